#pragma once

#include "design/CrossingRows.h"
#include "output/Json.h"

#include <cstdint>
#include <map>
#include <optional>
#include <utility>

namespace kvr::netlistdb::tool {

/// How many crossings there are between two clocks.
struct CrossingCounts {
    std::uint64_t safe = 0;
    std::uint64_t warning = 0;
    std::uint64_t unsafe = 0;
    std::uint64_t waived = 0;

    /// Counts each crossing of @p row by its most telling class.
    void add(const CrossingRow &row);
};

/// Launch clock, none for a port or black box, and capture clock.
using ClockPair = std::pair<std::optional<analysis::ClockId>, analysis::ClockId>;

/// What there is to say of many crossings.
struct CrossingTotals {
    std::map<ClockPair, CrossingCounts> pairs;
    std::uint64_t waived = 0;        ///< crossings, shown or not
    bool isEmpty = true;             ///< none is shown
    bool hasFailed = false;          ///< there is one that the choice calls a failure
    CrossingRules::Used usedWaivers; ///< by crossings between the chosen clocks, whatever their class

    /// The pairs of clocks, each with its numbers of crossings.
    Json summary(const analysis::ClockMap &clocks) const;
};

} // namespace kvr::netlistdb::tool
