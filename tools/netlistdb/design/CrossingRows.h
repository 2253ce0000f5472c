#pragma once

#include "design/CrossingRules.h"

#include <cstddef>
#include <cstdint>
#include <netlistdb/analysis/Crossings.h>
#include <optional>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// Crossings of the bits of one vector that are alike.
struct CrossingRow {
    const analysis::Crossing *first;
    const CrossingRules::Waiver *waiver;     ///< null: not waived
    std::optional<analysis::ClockId> launch; ///< of @ref first, at hand
    analysis::ClockId capture;
    analysis::CrossingClass kind;
    std::uint32_t begin;    ///< of its crossings, in the members of all rows
    std::uint32_t bits;     ///< number of crossings
    std::uint32_t deciding; ///< number of those whose most telling class is that of the row
    std::uint32_t cells;    ///< of the shortest way of all
    std::uint32_t stages;   ///< of the shortest synchronizer of all
};

/// All crossings of a design put together, in the order in which they come. Takes time in proportion to the crossings,
/// once; never changes.
class CrossingRows {
  public:
    struct Options {
        bool allClasses = false; ///< a row for every class that a crossing has, not only for the most telling one
        bool bits = false;       ///< a row for each crossing
    };

    /// @p crossings, those of @p clocks, and @p rules must outlive the object.
    CrossingRows(const std::vector<analysis::Crossing> &crossings, const analysis::ClockMap &clocks,
                 const CrossingRules &rules, Options options);

    const std::vector<CrossingRow> &all() const { return m_rows; }
    /// The sources of @p row as a name, of a vector with its bits.
    std::string from(const CrossingRow &row) const { return textOf(row, &analysis::Crossing::from); }
    /// The targets of @p row in the same way.
    std::string to(const CrossingRow &row) const { return textOf(row, &analysis::Crossing::to); }
    /// The waivers that are given to a row.
    CrossingRules::Used usedWaivers() const;

  private:
    void sortMembers(const std::vector<std::uint32_t> &rows, const std::vector<std::uint32_t> &crossings);
    std::string textOf(const CrossingRow &row, analysis::CrossingEnd analysis::Crossing::*end) const;

    const std::vector<analysis::Crossing> &m_crossings;
    std::vector<CrossingRow> m_rows;
    std::vector<std::uint32_t> m_members; ///< numbers of crossings, row by row
};

} // namespace kvr::netlistdb::tool
