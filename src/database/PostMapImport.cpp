#include "database/DatabaseState.h"
#include "database/ImportGuard.h"
#include "database/InstanceBuilder.h"

#include <netlistdb/VDBInstance.h>

#include <stdexcept>

namespace kvr::netlistdb {

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
        root.reserveSubInstances(top->GetInsts()->Size());
        complete = builder.forEachChild(
            *top, [&builder, &root](const InstanceBuilder::Child &child) { builder.add(root, child); });
    }
    if (m_state->keepSourceNetlists) {
        parseClkDomainPostMap(source.workingCopy.get());
    } else {
        source.workingCopy.reset();
    }
    return complete;
}

} // namespace kvr::netlistdb
