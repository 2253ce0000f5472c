#include <netlistdb/DesignDatabase.h>

#include "database/ImportSteps.h"

#include <netlistdb/VDBInstance.h>

#include <DataBase.h>

#include <stdexcept>

namespace kvr::netlistdb {

bool DesignDatabase::parsePostMapNetlist(Verific::Netlist *netlist)
{
    if (netlist == nullptr) {
        throw std::invalid_argument("netlist is nullptr");
    }
    const CellNames names(*netlist);
    makeWorkingCopy(m_postMap, *netlist);
    const std::size_t firstNetlist = m_postMap.netlists.size();
    bool complete = false;
    try {
        complete = buildPostMapTree(*m_postMap.workingCopy, names.cell, names.library);
    } catch (...) {
        dropStaleAnswers(SOURCE_POST_MAP, firstNetlist);
        throw;
    }
    dropStaleAnswers(SOURCE_POST_MAP, firstNetlist);
    if (m_keepSourceNetlists) {
        parseClkDomainPostMap(m_postMap.workingCopy);
    } else {
        dropWorkingCopy(m_postMap);
    }
    return complete;
}

bool DesignDatabase::buildPostMapTree(Verific::Netlist &top, const std::string &cellName,
                                      const std::string &libraryName)
{
    m_postMap.topModule = buildNetlist(&top, false, cellName, libraryName);
    VDBInstance *const root = makeRoot(m_postMap, m_postMap.topModule);
    ModuleMap modules;
    buildModulesBelow(*this, &top, false, modules);

    root->reserveSubInstances(top.GetInsts()->Size());
    Verific::MapIter instances;
    const Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (&top, instances, instance) {
        const auto module = modules.find(instance->View());
        if (module == modules.end()) {
            return false;
        }
        addInstance(*m_pool, *root, module->second, instance);
    }
    return true;
}

} // namespace kvr::netlistdb
