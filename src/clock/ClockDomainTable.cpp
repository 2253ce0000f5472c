#include "clock/ClockDomainTable.h"

#include <netlistdb/VDBClockDomain.h>

#include <functional>
#include <utility>

namespace kvr::netlistdb {

void ClockDomainTable::add(const InstanceNet &clock)
{
    std::unique_ptr<IClockDomain> made = std::make_unique<VDBClockDomain>(clock.second, clock.first);
    IClockDomain *const domain = made.get();
    const auto position = m_domains.insert(std::move(made)).first;
    try {
        IClockDomain *&first = m_first[clock];
        if (first == nullptr || std::less<IClockDomain *>()(domain, first)) {
            first = domain;
        }
    } catch (...) {
        m_domains.erase(position);
        throw;
    }
}

IClockDomain *ClockDomainTable::find(const InstanceNet &clock) const
{
    const auto found = m_first.find(clock);
    return found != m_first.end() ? found->second : nullptr;
}

std::vector<IClockDomain *> ClockDomainTable::list() const
{
    std::vector<IClockDomain *> domains;
    domains.reserve(m_domains.size());
    for (const std::unique_ptr<IClockDomain> &domain : m_domains) {
        domains.push_back(domain.get());
    }
    return domains;
}

void ClockDomainTable::clear()
{
    m_first.clear();
    m_domains.clear();
}

} // namespace kvr::netlistdb
