#pragma once

#include "analysis/probe/BitGraph.h"

#include <vector>

namespace kvr::netlistdb::analysis::probe {

/// For each wire, whether an output of the top or a black box depends on it.
std::vector<bool> usedWires(const BitGraph &graph);

} // namespace kvr::netlistdb::analysis::probe
