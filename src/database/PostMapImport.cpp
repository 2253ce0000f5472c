#include "database/DatabaseState.h"
#include "database/ImportGuard.h"
#include "database/ImportSteps.h"

#include <netlistdb/VDBInstance.h>

#include <stdexcept>

namespace kvr::netlistdb {

namespace {

/// Makes the instances of @p top below @p root; false when one names a view outside the hierarchy, which ends it there.
bool addTopLevel(ClockAnalysis &clocks, VDBObjectPool &pool, VDBInstance &root, const Verific::Netlist &top,
                 const ModuleMap &modules)
{
    root.reserveSubInstances(top.GetInsts()->Size());
    Verific::MapIter instances;
    const Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (&top, instances, instance) {
        const auto module = modules.find(instance->View());
        if (module == modules.end()) {
            return false;
        }
        addInstance(clocks, pool, root, module->second, instance);
    }
    return true;
}

} // namespace

bool DesignDatabase::parsePostMapNetlist(Verific::Netlist *netlist)
{
    if (netlist == nullptr) {
        throw std::invalid_argument("netlist is nullptr");
    }
    const CellNames names(*netlist);
    Source &source = m_state->postMap;
    bool complete = false;
    {
        const ImportGuard guard(m_state->clocks, m_state->importDepth);
        source.makeWorkingCopy(*netlist);
        Verific::Netlist *const top = source.workingCopy.get();
        source.topModule = buildNetlist(top, false, names.cell, names.library);
        VDBInstance &root = source.makeRoot(source.topModule);
        m_state->clocks.itemMade(&root);
        ModuleMap modules;
        buildModulesBelow(*this, top, false, modules);
        complete = addTopLevel(m_state->clocks, source.pool, root, *top, modules);
    }
    if (m_state->keepSourceNetlists) {
        parseClkDomainPostMap(source.workingCopy.get());
    } else {
        source.workingCopy.reset();
    }
    return complete;
}

} // namespace kvr::netlistdb
