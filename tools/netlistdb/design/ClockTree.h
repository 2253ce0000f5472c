#pragma once

#include <netlistdb/analysis/ClockMap.h>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// A clock in its place in the tree.
struct ClockTreeLine {
    analysis::ClockId clock;
    std::string drawing; ///< what a tree draws in front of the name; empty for a clock that stands for itself
};

/// Every clock once: those without parent in the order of the map, each followed by the clocks that are made from it. A
/// clock with several parents stands below the first; clocks that are made from each other begin at the first of them.
std::vector<ClockTreeLine> clockTreeOf(const analysis::ClockMap &clocks);

} // namespace kvr::netlistdb::tool
