#pragma once

#include "analysis/probe/BitGraph.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis::plan {

/// Hashes of the cells over 32 levels behind each wire, in which no names count but those of the ports of the top and
/// of the types of black boxes. By wire; 0 for constants and wires that nothing drives.
std::vector<std::uint64_t> deepHashes(const probe::BitGraph &graph);

} // namespace kvr::netlistdb::analysis::plan
