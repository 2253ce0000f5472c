#pragma once

#include <string>
#include <unordered_map>

namespace Verific {
class Netlist;
} // namespace Verific

namespace kvr::netlistdb {

class DesignDatabase;
class IVDBNetlist;

// What the two imports share.

/// From each netlist of a hierarchy to the module built from it.
using ModuleMap = std::unordered_map<const Verific::Netlist *, IVDBNetlist *>;

/// Name of a netlist's cell and of that cell's library, empty where there is none.
struct CellNames {
    explicit CellNames(const Verific::Netlist &netlist);
    std::string cell;
    std::string library;
};

/// Builds the module of every netlist below @p top, leaves included, in the order of the hierarchy, and adds it to
/// @p modules.
void buildModulesBelow(DesignDatabase &database, const Verific::Netlist *top, bool elaborated, ModuleMap &modules);

} // namespace kvr::netlistdb
