#pragma once

#include "analysis/DesignModel.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace kvr::netlistdb::analysis {

/// A port of a memory that shows at once what others wrote, in a netlist that has the ports of a memory as cells of
/// their own, which know the memory by its name.
struct MemoryRead {
    std::uint32_t cell;
    std::string memory;
    std::vector<CellPin> clocks; ///< clock pins of the ports that write the memory
};

/// All such ports of a design, by module.
std::map<std::uint32_t, std::vector<MemoryRead>> findMemoryReads(const DesignModel &design);

} // namespace kvr::netlistdb::analysis
