#include "database/DatabaseState.h"
#include "database/ImportGuard.h"
#include "database/ImportSteps.h"

#include <netlistdb/VDBInstance.h>

#include <DataBase.h>

#include <chrono>
#include <deque>
#include <stdexcept>

namespace kvr::netlistdb {

namespace {

/// An instance whose contents are still to be unfolded.
struct Pending {
    VDBInstance *item;
    const Verific::Netlist *netlist; ///< what it is an instance of
};

/// Nothing comes of queueing what has no instances; in most designs that is nearly everything.
bool hasInstances(const Verific::Netlist *netlist)
{
    return netlist->GetInsts()->Size() != 0;
}

} // namespace

bool DesignDatabase::parseElaboratedNetlist(Verific::Netlist *netlist)
{
    [[maybe_unused]] const auto begin = std::chrono::steady_clock::now();
    if (netlist == nullptr) {
        throw std::invalid_argument("netlist is nullptr");
    }
    const CellNames names(*netlist);
    Source &source = m_state->elaborated;
    bool complete = false;
    {
        const ImportGuard guard(m_state->clocks, m_state->importDepth);
        source.makeWorkingCopy(*netlist);
        source.topModule = buildNetlist(source.workingCopy.get(), true, names.cell, names.library);
        complete = parseHier(source.workingCopy.get(), source.topModule);
    }
    if (m_state->keepSourceNetlists) {
        parseClkDomainElab(source.workingCopy.get());
    } else {
        source.workingCopy.reset();
    }
    [[maybe_unused]] const auto end = std::chrono::steady_clock::now();
    return complete;
}

bool DesignDatabase::parseHier(Verific::Netlist *top, IVDBNetlist *topModule)
{
    [[maybe_unused]] const auto begin = std::chrono::steady_clock::now();
    if (top == nullptr) {
        throw std::invalid_argument("netlist is nullptr");
    }
    const ImportGuard guard(m_state->clocks, m_state->importDepth);
    Source &source = m_state->elaborated;
    ModuleMap modules;
    modules.emplace(top, topModule);
    source.pool.registerNetlist(top, topModule);
    buildModulesBelow(*this, top, true, modules);

    VDBInstance &root = source.makeRoot(topModule);
    m_state->clocks.itemMade(&root);
    bool complete = true;
    std::deque<Pending> queue;
    root.reserveSubInstances(top->GetInsts()->Size());
    Verific::MapIter instances;
    const Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (top, instances, instance) {
        const auto module = modules.find(instance->View());
        if (module == modules.end()) {
            complete = false;
            break;
        }
        VDBInstance *const item = addInstance(m_state->clocks, source.pool, root, module->second, instance);
        // Here alone a black box is unfolded too, should it have contents.
        if (hasInstances(module->first)) {
            queue.push_back({item, module->first});
        }
    }
    for (; !queue.empty(); queue.pop_front()) {
        const Pending &parent = queue.front();
        parent.item->reserveSubInstances(parent.netlist->GetInsts()->Size());
        FOREACH_INSTANCE_OF_NETLIST (parent.netlist, instances, instance) {
            const auto module = modules.find(instance->View());
            if (module == modules.end()) {
                complete = false;
                break;
            }
            VDBInstance *const item = addInstance(m_state->clocks, source.pool, *parent.item, module->second, instance);
            if (!module->first->IsBlackBox() && hasInstances(module->first)) {
                queue.push_back({item, module->first});
            }
        }
    }
    [[maybe_unused]] const auto end = std::chrono::steady_clock::now();
    return complete;
}

} // namespace kvr::netlistdb
