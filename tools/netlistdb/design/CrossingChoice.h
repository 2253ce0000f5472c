#pragma once

#include "design/CrossingRows.h"

#include <cstdint>
#include <netlistdb/analysis/Crossings.h>
#include <optional>
#include <string>
#include <string_view>

namespace kvr::netlistdb::tool {

/// All severities, the best first.
inline constexpr analysis::Severity SEVERITIES[] = {analysis::Severity::Safe, analysis::Severity::Warning,
                                                    analysis::Severity::Unsafe};

/// The severity that nameOf() gives that name.
std::optional<analysis::Severity> severityCalled(std::string_view name);

/// What a result shows of a few things: all until some are chosen.
template <typename Thing> class Choices {
  public:
    void add(Thing thing) { m_mask |= 1U << static_cast<unsigned>(thing); }
    bool has(Thing thing) const { return m_mask == 0 || (m_mask >> static_cast<unsigned>(thing) & 1U) != 0; }
    void clear() { m_mask = 0; }

  private:
    std::uint32_t m_mask = 0;
};

using CrossingClasses = Choices<analysis::CrossingClass>;
using Severities = Choices<analysis::Severity>;

/// What makes a command fail: classes, and severities with those that are worse.
class CrossingFailures {
  public:
    void add(analysis::CrossingClass kind) { m_mask |= 1U << static_cast<unsigned>(kind); }
    void add(analysis::Severity severity)
    {
        for (std::size_t number = 0; number < analysis::CROSSING_CLASSES; ++number) {
            const auto kind = static_cast<analysis::CrossingClass>(number);
            if (severityOf(kind) >= severity) {
                add(kind);
            }
        }
    }
    bool given() const { return m_mask != 0; }
    bool has(analysis::CrossingClass kind) const { return (m_mask >> static_cast<unsigned>(kind) & 1U) != 0; }
    void clear() { m_mask = 0; }

  private:
    std::uint32_t m_mask = 0;
};

/// Which crossings a result shows.
struct CrossingChoice {
    std::string from; ///< wildcard for the name of the launch clock; empty: all
    std::string to;   ///< the same for the capture clock
    CrossingClasses classes;
    Severities severities;
    CrossingFailures failures;
    bool waived = false;     ///< those, too
    bool allClasses = false; ///< every class that a crossing has, not only the most telling one
    bool bits = false;       ///< each bit of a vector by itself

    CrossingRows::Options rows() const { return {allClasses, bits}; }
};

} // namespace kvr::netlistdb::tool
