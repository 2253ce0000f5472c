#pragma once

#include "analysis/ModuleClocks.h"
#include "analysis/SetTable.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis {

/// For every net of a module, in the terms of the module: what reaches it, and what it reaches.
struct ModuleSets {
    SetTable launchTable;
    SetTable captureTable;
    std::vector<SetTable::Ref> launch;  ///< by net
    std::vector<std::uint32_t> capture; ///< by net: sets without distances

    std::size_t memory() const
    {
        return launchTable.memory() + captureTable.memory() + launch.capacity() * sizeof(SetTable::Ref) +
               capture.capacity() * sizeof(std::uint32_t);
    }
};

/// Works out the sets of @p module; those of the modules that it instantiates are in @p sets already. In a module that
/// has ports towards others, these are part of the sets; ports of the top (@p isTop) are flags.
ModuleSets findSets(const Hierarchy &hierarchy, const std::vector<ModuleClocks> &clocks, std::uint32_t module,
                    bool isTop, const std::vector<ModuleSets> &sets);

} // namespace kvr::netlistdb::analysis
