#include <netlistdb/DesignDatabase.h>

#include "clock/ClockState.h"
#include "clock/DiscardedPath.h"

#include <netlistdb/IClockDomain.h>
#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/IVDBNetBus.h>
#include <netlistdb/IVDBNetlist.h>
#include <netlistdb/VDBClockDomain.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <unordered_set>

namespace kvr::netlistdb {

namespace {

std::uintptr_t addressOf(const void *object)
{
    return reinterpret_cast<std::uintptr_t>(object);
}

} // namespace

void DesignDatabase::addCache(IClockDomain *domain, InstanceNet key)
{
    InstanceNetSet &pairs = m_drivingClockCache[domain];
    if (!pairs.insert(key)) {
        return;
    }
    try {
        AddressMap &firstDomains = m_clocks->firstDomains[key.first];
        if (!firstDomains.insertIfAbsent(addressOf(key.second), addressOf(domain))) {
            std::uintptr_t &first = *firstDomains.find(addressOf(key.second));
            first = std::min(first, addressOf(domain));
        }
    } catch (...) {
        pairs.erase(key);
        throw;
    }
}

IClockDomain *DesignDatabase::isCached(InstanceNet key)
{
    const auto position = findCachedResult(key);
    return position != m_drivingClockCache.end() ? position->first : nullptr;
}

DesignDatabase::DrivingClockCache::iterator DesignDatabase::findCachedResult(InstanceNet key)
{
    const auto nets = m_clocks->firstDomains.find(key.first);
    if (nets == m_clocks->firstDomains.end()) {
        return m_drivingClockCache.end();
    }
    const std::uintptr_t *first = nets->second.find(addressOf(key.second));
    return first != nullptr ? m_drivingClockCache.find(reinterpret_cast<IClockDomain *>(*first))
                            : m_drivingClockCache.end();
}

IClockDomain *DesignDatabase::getParsedClockDomain(IVDBInstance *inst, IVDBNet *net, SOURCE_TYPE type)
{
    if (inst == nullptr || net == nullptr || source(type) == nullptr) {
        return nullptr;
    }
    const ClockState::Records &records = m_clocks->recordsOf(type);
    const auto found = records.find({inst, net});
    return found != records.end() ? found->second : nullptr;
}

IClockDomain *DesignDatabase::findDrivingClockDomains(IVDBInstance *inst, IVDBNet *net, SOURCE_TYPE type)
{
    [[maybe_unused]] const auto started = std::chrono::steady_clock::now();
    if (!m_keepSourceNetlists) {
        return nullptr;
    }
    discardPath(*inst);
    static_cast<void>(net->getName());

    IClockDomain *domain = nullptr;
    if (type == SOURCE_ELABORATED) {
        domain = findDrivingClockDomainElab(inst, net);
    } else if (type == SOURCE_POST_MAP) {
        domain = findDrivingClockDomainPostMap(inst, net);
    }
    [[maybe_unused]] const auto ended = std::chrono::steady_clock::now();
    return domain;
}

std::vector<IClockDomain *> DesignDatabase::listAllClockDomains(SOURCE_TYPE type) const
{
    const Source *chosen = source(type);
    return chosen != nullptr ? std::vector<IClockDomain *>(chosen->clockDomains.begin(), chosen->clockDomains.end())
                             : std::vector<IClockDomain *>();
}

void DesignDatabase::recordClockDomain(IVDBInstance *inst, IVDBNet *net, SOURCE_TYPE type)
{
    auto domain = std::make_unique<VDBClockDomain>(net, inst);
    std::set<IClockDomain *> &table = source(type)->clockDomains;
    const auto position = table.insert(domain.get()).first;
    try {
        IClockDomain *&first = m_clocks->recordsOf(type)[{inst, net}];
        if (first == nullptr || std::less<IClockDomain *>()(domain.get(), first)) {
            first = domain.get();
        }
    } catch (...) {
        table.erase(position);
        throw;
    }
    static_cast<void>(domain.release());
}

bool DesignDatabase::findElaboratedAnswer(const IVDBInstance *inst, IClockDomain *&domain) const
{
    const std::uintptr_t *answer = m_clocks->elaboratedAnswers.find(addressOf(inst));
    if (answer == nullptr) {
        return false;
    }
    domain = reinterpret_cast<IClockDomain *>(*answer);
    return true;
}

void DesignDatabase::recordElaboratedAnswer(const IVDBInstance *inst, IClockDomain *domain)
{
    m_clocks->elaboratedAnswers.insertIfAbsent(addressOf(inst), addressOf(domain));
}

std::vector<std::pair<IVDBInstance *, IClockDomain *>> DesignDatabase::elaboratedInstanceCache() const
{
    std::vector<std::pair<IVDBInstance *, IClockDomain *>> entries;
    m_clocks->elaboratedAnswers.forEach([&entries](std::uintptr_t instance, std::uintptr_t answer) {
        entries.emplace_back(reinterpret_cast<IVDBInstance *>(instance), reinterpret_cast<IClockDomain *>(answer));
    });
    return entries;
}

void DesignDatabase::forgetClockRecords(SOURCE_TYPE type)
{
    m_clocks->recordsOf(type).clear();
    m_clocks->landmarks.clear();
    m_clocks->subInstances.clear();
    m_clocks->drivingPins.clear();
}

void DesignDatabase::dropStaleAnswers(SOURCE_TYPE type, std::size_t firstNetlist)
{
    // What these hold is about netlists that may have gone; it is found anew when needed.
    m_clocks->landmarks.clear();
    m_clocks->subInstances.clear();
    m_clocks->drivingPins.clear();
    if (m_drivingClockCache.empty() && m_clocks->elaboratedAnswers.empty()) {
        return;
    }

    std::unordered_set<const IVDBItem *> fresh;
    const Source &imported = *source(type);
    for (std::size_t i = firstNetlist; i < imported.netlists.size(); ++i) {
        for (const bool fromBuses : {false, true}) {
            for (IVDBNet *net : imported.netlists[i]->getNets(fromBuses)) {
                fresh.insert(net);
            }
        }
    }
    std::vector<IVDBInstance *> waiting;
    if (imported.root != nullptr) {
        waiting.push_back(imported.root);
    }
    while (!waiting.empty()) {
        IVDBInstance *instance = waiting.back();
        waiting.pop_back();
        fresh.insert(instance);
        m_clocks->elaboratedAnswers.erase(addressOf(instance));
        const std::vector<IVDBInstance *> &children = instance->getSubInstances();
        waiting.insert(waiting.end(), children.begin(), children.end());
    }

    for (auto &entry : m_drivingClockCache) {
        for (const InstanceNet &pair : entry.second.pairs()) {
            if (fresh.count(pair.first) == 0 && fresh.count(pair.second) == 0) {
                continue;
            }
            entry.second.erase(pair);
            const auto nets = m_clocks->firstDomains.find(pair.first);
            if (nets != m_clocks->firstDomains.end()) {
                nets->second.erase(addressOf(pair.second));
            }
        }
    }
}

} // namespace kvr::netlistdb
