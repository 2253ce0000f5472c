#pragma once

#include <string>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb {
class IClockDomain;
class IVDBInstance;
class IVDBNet;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::tool {

class Design;
class SourceNetlists;

/// A net in an instance.
struct ClockNet {
    IVDBInstance *instance;
    IVDBNet *net;

    std::string fullName() const;
};

/// A clock as people know it: one wire, from where it enters the design to the pins that it clocks.
struct Clock {
    std::string name;           ///< full name of the first of the nets
    std::vector<ClockNet> nets; ///< the one that names the clock, then those of the clock domains, in order
};

/// Groups clock domains into clocks. A clock that enters a module is a net there as well, and a domain of its own to
/// the database; so is the net in front of a clock buffer, and the one behind it. Clock gates, multiplexers and
/// dividers begin another clock.
class ClockWires {
  public:
    /// @p domains are in the order in which the program shows them.
    ClockWires(Design &design, const SourceNetlists &sources, const std::vector<IClockDomain *> &domains);
    ClockWires(const ClockWires &) = delete;
    ClockWires &operator=(const ClockWires &) = delete;

    /// The clock that @p domain belongs to, or null for null.
    const Clock *of(const IClockDomain *domain) const;
    /// All clocks, in order.
    const std::vector<Clock> &clocks() const { return m_clocks; }

  private:
    std::vector<Clock> m_clocks;
    std::unordered_map<const IClockDomain *, std::size_t> m_numbers;
};

} // namespace kvr::netlistdb::tool
