#include "clock/PairCache.h"

#include "model/NetWalk.h"

#include <algorithm>
#include <cstdint>

namespace kvr::netlistdb {

void PairCache::add(IClockDomain *domain, const InstanceNet &pair)
{
    InstanceNetSet &pairs = m_sets[domain];
    if (!pairs.insert(pair)) {
        return;
    }
    try {
        AddressMap &first = m_first[pair.first];
        if (!first.insertIfAbsent(addressOf(pair.second), addressOf(domain))) {
            std::uintptr_t &recorded = *first.find(addressOf(pair.second));
            recorded = std::min(recorded, addressOf(domain));
        }
    } catch (...) {
        pairs.erase(pair);
        throw;
    }
}

PairCache::Sets::iterator PairCache::find(const InstanceNet &pair)
{
    const auto nets = m_first.find(pair.first);
    const std::uintptr_t *first = nets != m_first.end() ? nets->second.find(addressOf(pair.second)) : nullptr;
    return first != nullptr ? m_sets.find(reinterpret_cast<IClockDomain *>(*first)) : m_sets.end();
}

void PairCache::watchForReuse()
{
    m_hasMarked = false;
    m_watched.clear();
    for (auto &[instance, nets] : m_first) {
        nets.forEach([this](std::uintptr_t net, std::uintptr_t) { m_watched.insertIfAbsent(net, 0); });
    }
}

void PairCache::forget(IVDBInstance *instance)
{
    if (m_first.erase(instance) != 0) {
        for (auto &entry : m_sets) {
            entry.second.eraseInstance(instance);
        }
    }
}

void PairCache::mark(const VDBNetlist &module)
{
    if (m_watched.empty()) {
        return;
    }
    forEachNet(module, [this](const IVDBNet *net) {
        if (std::uintptr_t *isMarked = m_watched.find(addressOf(net))) {
            *isMarked = 1;
            m_hasMarked = true;
        }
    });
}

void PairCache::forgetMarked()
{
    for (auto entry = m_sets.begin(); m_hasMarked && entry != m_sets.end(); ++entry) {
        for (const InstanceNet &pair : entry->second) {
            const std::uintptr_t *isMarked = m_watched.find(addressOf(pair.second));
            if (isMarked != nullptr && *isMarked != 0) {
                entry->second.erase(pair);
                m_first.find(pair.first)->second.erase(addressOf(pair.second));
            }
        }
    }
    m_watched.clear();
    m_hasMarked = false;
}

} // namespace kvr::netlistdb
