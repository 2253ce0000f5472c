#pragma once

#include "analysis/probe/Simulator.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis::probe {

/// For each wire, whether it has one value for ever once registers have been reset: 0, 1, or 2 for no.
std::vector<std::uint8_t> constantsOf(const BitGraph &graph, const Simulator &simulator);

} // namespace kvr::netlistdb::analysis::probe
