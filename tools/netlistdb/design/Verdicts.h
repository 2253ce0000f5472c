#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <netlistdb/analysis/ProbeReport.h>
#include <optional>
#include <string_view>

namespace kvr::netlistdb::tool {

/// All verdicts, the best first.
inline constexpr std::array VERDICTS = {analysis::ProbeVerdict::Ok, analysis::ProbeVerdict::Warning,
                                        analysis::ProbeVerdict::Partly, analysis::ProbeVerdict::No};

/// The verdict that nameOf() gives that name.
inline std::optional<analysis::ProbeVerdict> verdictCalled(std::string_view name)
{
    for (const analysis::ProbeVerdict verdict : VERDICTS) {
        if (name == nameOf(verdict)) {
            return verdict;
        }
    }
    return std::nullopt;
}

/// Which verdicts a result shows.
class Verdicts {
  public:
    bool has(analysis::ProbeVerdict verdict) const { return m_shown[static_cast<std::size_t>(verdict)]; }
    void add(analysis::ProbeVerdict verdict) { m_shown.set(static_cast<std::size_t>(verdict)); }
    void clear() { m_shown.reset(); }
    /// When none was asked for: all, or with @p probeable those of what may be probed.
    void finish(bool probeable)
    {
        if (m_shown.none()) {
            m_shown.set();
            m_shown.set(static_cast<std::size_t>(analysis::ProbeVerdict::No), !probeable);
        }
    }

  private:
    std::bitset<VERDICTS.size()> m_shown;
};

} // namespace kvr::netlistdb::tool
