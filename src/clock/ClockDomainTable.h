#pragma once

#include "clock/InstanceNetHash.h"

#include <netlistdb/IClockDomain.h>

#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb {

/// The clock domains of one source, which it owns, in ascending order of address.
class ClockDomainTable {
  public:
    /// Makes the domain of a clock net.
    /// @throws std::invalid_argument "VDBClockDomain: net is nullptr" or "VDBClockDomain: inst is nullptr"
    void add(const InstanceNet &clock);
    /// The first domain of the table with exactly this instance and net, or null.
    IClockDomain *find(const InstanceNet &clock) const;
    std::vector<IClockDomain *> list() const;
    void clear();

  private:
    std::set<std::unique_ptr<IClockDomain>> m_domains;
    std::unordered_map<InstanceNet, IClockDomain *, InstanceNetHash> m_first;
};

} // namespace kvr::netlistdb
