#pragma once

#include <string>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb {
class IClockDomain;
class IVDBInstance;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::tool {

class SourceNetlists;

/// Tells which clock domains are one wire: a clock that enters a module is a net there as well, and a domain of its own
/// to the database. People count wires.
class ClockWires {
  public:
    /// @p domains stand in the order in which the program shows them.
    ClockWires(const SourceNetlists &sources, const std::vector<IClockDomain *> &domains);

    /// The domain that stands for all on the wire of @p domain: the one nearest to the top, the first of several.
    /// Null for null.
    IClockDomain *of(IClockDomain *domain) const;
    /// The domains that stand for their wires, in order.
    const std::vector<IClockDomain *> &clocks() const { return m_clocks; }
    /// Names of the others on the wire of @p clock, in order.
    const std::vector<std::string> &othersOf(const IClockDomain *clock) const;

  private:
    std::unordered_map<const IClockDomain *, IClockDomain *> m_wires;
    std::unordered_map<const IClockDomain *, std::vector<std::string>> m_others;
    std::vector<IClockDomain *> m_clocks;
};

} // namespace kvr::netlistdb::tool
