#include "database/DatabaseState.h"
#include "database/ImportGuard.h"
#include "database/InstanceBuilder.h"

#include <netlistdb/VDBInstance.h>

#include <optional>
#include <stdexcept>

namespace kvr::netlistdb {

namespace {

/// Makes the instances of @p top below @p root; false when one names a view outside the hierarchy, which ends it there.
bool addTopLevel(InstanceBuilder &builder, VDBInstance &root, const Verific::Netlist &top)
{
    root.reserveSubInstances(top.GetInsts()->Size());
    Verific::MapIter instances;
    const Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (&top, instances, instance) {
        const std::optional<InstanceBuilder::Child> child = builder.child(instance);
        if (!child) {
            return false;
        }
        builder.add(root, *child);
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
        InstanceBuilder builder(m_state->clocks, source.pool, modules);
        complete = addTopLevel(builder, root, *top);
    }
    if (m_state->keepSourceNetlists) {
        parseClkDomainPostMap(source.workingCopy.get());
    } else {
        source.workingCopy.reset();
    }
    return complete;
}

} // namespace kvr::netlistdb
