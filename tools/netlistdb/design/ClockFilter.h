#pragma once

#include <netlistdb/analysis/ClockMap.h>
#include <optional>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// The clocks that a name or a wildcard chooses.
class ClockFilter {
  public:
    /// @p text is a wildcard for names of clocks, "(none)" for what has no clock, or empty for everything.
    /// @throws Failure, with the nearest name, when no clock is called so.
    ClockFilter(const analysis::ClockMap &clocks, const std::string &text);

    bool has(std::optional<analysis::ClockId> clock) const { return clock ? m_has[*clock] : m_hasNone; }

  private:
    std::vector<bool> m_has; ///< by clock
    bool m_hasNone;
};

/// Refuses a name or wildcard as ClockFilter does.
/// @throws Failure
inline void checkClockName(const std::string &text, const analysis::ClockMap &clocks)
{
    static_cast<void>(ClockFilter(clocks, text));
}

} // namespace kvr::netlistdb::tool
