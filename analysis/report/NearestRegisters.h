#pragma once

#include "analysis/DesignModel.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis {

/// Mask of ClockEdge: the edges of @p clock, a number among all clocks, where it begins, on which the nearest register
/// that it clocks changes the net; 0 when no such register is found.
std::uint8_t launchEdges(const DesignModel &design, const Place &place, std::uint32_t clock);

/// Nets that registers in the fan-in of the net drive, the nearest first; at most @p most.
std::vector<Place> nearestRegisters(const DesignModel &design, const Place &place, std::size_t most);

} // namespace kvr::netlistdb::analysis
