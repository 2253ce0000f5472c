#pragma once

#include "analysis/probe/BitGraph.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis::probe {

/// The nodes of logic, each behind those that it depends on. Nodes in combinational loops are left out, and those that
/// lie between two loops.
std::vector<std::uint32_t> logicOrderOf(const BitGraph &graph);

} // namespace kvr::netlistdb::analysis::probe
