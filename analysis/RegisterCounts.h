#pragma once

#include "analysis/DesignModel.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis {

/// How a clock is used.
struct ClockUse {
    std::uint32_t clock = 0; ///< among all clocks of the design
    std::uint8_t edges = 0;  ///< of the net that the clock begins at
    std::uint64_t registers = 0;
};

/// Every clock that something is clocked by, in ascending order.
std::vector<ClockUse> countRegisters(const Hierarchy &hierarchy, const std::vector<ModuleClocks> &clocks);

} // namespace kvr::netlistdb::analysis
