#pragma once

#include "analysis/probe/BitGraph.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis::plan {

/// By wire: mask of ClockEdge, the edges at which the registers sample that reach it through logic. Inverters in front
/// of clock pins count.
std::vector<std::uint8_t> launchEdges(const probe::BitGraph &graph);

} // namespace kvr::netlistdb::analysis::plan
