#pragma once

#include "analysis/ClockTable.h"
#include "analysis/DesignModel.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis {

/// For each clock, the number of nets, unfolded, that its registers reach.
std::vector<std::uint64_t> countNetsLaunched(const DesignModel &design, const ClockTable &table);

} // namespace kvr::netlistdb::analysis
