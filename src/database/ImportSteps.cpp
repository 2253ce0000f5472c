#include "database/ImportSteps.h"

#include "clock/ClockAnalysis.h"
#include "netlist/VDBObjectPool.h"
#include "netlist/verific_queries.h"

#include <netlistdb/DesignDatabase.h>
#include <netlistdb/VDBInstance.h>

#include <DataBase.h>
#include <Set.h>

#include <memory>

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

VDBInstance *addInstance(ClockAnalysis &clocks, VDBObjectPool &pool, VDBInstance &owner, IVDBNetlist *module,
                         const Verific::Instance *instance)
{
    auto item = std::make_unique<VDBInstance>(module, &owner, instance);
    owner.addSubInstance(item.get());
    // From here on the tree owns it, so that a failing registration leaves no entry of a deleted item.
    VDBInstance *const added = item.release();
    clocks.itemMade(added);
    pool.registerInstance(added, instance);
    return added;
}

} // namespace kvr::netlistdb
