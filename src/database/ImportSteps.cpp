#include "database/ImportSteps.h"

#include "netlist/verific_queries.h"

#include <netlistdb/DesignDatabase.h>

#include <DataBase.h>
#include <Set.h>

namespace kvr::netlistdb {

CellNames::CellNames(const Verific::Netlist &netlist)
{
    if (const char *name = verific_queries::cellName(netlist)) {
        cell = name;
    }
    if (const char *name = verific_queries::libraryName(netlist)) {
        library = name;
    }
}

void buildModulesBelow(DesignDatabase &database, const Verific::Netlist *top, bool elaborated, ModuleMap &modules)
{
    Verific::Set hierarchy(Verific::POINTER_HASH, 2);
    top->Hierarchy(hierarchy, 1);
    modules.reserve(hierarchy.Size());
    Verific::SetIter netlists;
    Verific::Netlist *netlist = nullptr;
    FOREACH_SET_ITEM (&hierarchy, netlists, &netlist) {
        if (netlist != top) {
            // The module takes the names of the netlist's own cell and library.
            IVDBNetlist *const module = database.buildNetlist(netlist, elaborated, "", "");
            modules.try_emplace(netlist, module);
        }
    }
}

} // namespace kvr::netlistdb
