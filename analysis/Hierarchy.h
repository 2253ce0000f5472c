#pragma once

#include "analysis/CellModels.h"
#include "analysis/ModuleGraph.h"

#include <netlistdb/IDesignDatabase.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Verific {
class Netlist;
}

namespace kvr::netlistdb {
class DesignDatabase;
class IVDBNet;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::analysis {

/// The modules of one source that can be looked into, each once, and the cells that they are made of.
struct Hierarchy {
    /// Reads everything below @p top.
    Hierarchy(const DesignDatabase &database, IDesignDatabase::SOURCE_TYPE source, const Verific::Netlist &top);

    CellModels models;
    std::vector<IVDBNet *> items; ///< of the nets, module by module; null where the source has no item
    /// A module stands behind those that it instantiates; the last one is the top.
    std::vector<ModuleGraph> modules;

    std::uint32_t top() const { return static_cast<std::uint32_t>(modules.size()) - 1; }
    std::size_t memory() const;
};

} // namespace kvr::netlistdb::analysis
