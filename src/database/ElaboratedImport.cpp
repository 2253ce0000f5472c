#include "database/DatabaseState.h"
#include "database/ImportGuard.h"
#include "database/InstanceBuilder.h"

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
    InstanceBuilder builder(m_state->clocks, source.pool, modules);
    std::deque<Pending> queue;
    root.reserveSubInstances(top->GetInsts()->Size());
    bool complete = builder.forEachChild(*top, [&](const InstanceBuilder::Child &child) {
        VDBInstance *const item = builder.add(root, child);
        // Here alone a black box is unfolded too, should it have contents.
        if (child.hasInstances) {
            queue.push_back({item, child.netlist});
        }
    });
    for (; !queue.empty(); queue.pop_front()) {
        const Pending &parent = queue.front();
        const InstanceBuilder::Children &children = builder.childrenOf(*parent.netlist);
        parent.item->reserveSubInstances(children.all.size());
        for (const InstanceBuilder::Child &child : children.all) {
            VDBInstance *const item = builder.add(*parent.item, child);
            if (child.hasInstances && !child.isBlackBox) {
                queue.push_back({item, child.netlist});
            }
        }
        complete = complete && children.complete;
    }
    [[maybe_unused]] const auto end = std::chrono::steady_clock::now();
    return complete;
}

} // namespace kvr::netlistdb
