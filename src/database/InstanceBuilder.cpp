#include "database/InstanceBuilder.h"

#include "clock/ClockAnalysis.h"
#include "netlist/VDBObjectPool.h"
#include "netlist/verific_queries.h"

#include <netlistdb/VDBInstance.h>

#include <DataBase.h>

#include <memory>
#include <utility>

namespace kvr::netlistdb {

bool InstanceBuilder::forEachChild(const Verific::Netlist &netlist, const std::function<void(Child &&)> &visit) const
{
    Verific::MapIter instances;
    const Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (&netlist, instances, instance) {
        const auto module = m_modules.find(instance->View());
        if (module == m_modules.end()) {
            return false;
        }
        const Verific::Netlist *const view = module->first;
        visit({instance,
               view,
               module->second,
               {instance->Name(), verific_queries::parameterCount(*instance)},
               view->GetInsts()->Size() != 0,
               view->IsBlackBox() != 0});
    }
    return true;
}

const InstanceBuilder::Children &InstanceBuilder::childrenOf(const Verific::Netlist &netlist)
{
    const auto [entry, isNew] = m_children.try_emplace(&netlist);
    Children &children = entry->second;
    if (isNew) {
        children.all.reserve(netlist.GetInsts()->Size());
        children.complete =
            forEachChild(netlist, [&children](Child &&child) { children.all.push_back(std::move(child)); });
    }
    return children;
}

VDBInstance *InstanceBuilder::add(VDBInstance &owner, const Child &child)
{
    std::unique_ptr<VDBInstance> item(new VDBInstance(child.module, &owner, child.traits));
    owner.addSubInstance(item.get());
    // From here on the tree owns it, so that a failing registration leaves no entry of a deleted item.
    VDBInstance *const added = item.release();
    m_clocks.itemMade(added);
    m_pool.registerInstance(added, child.instance);
    return added;
}

} // namespace kvr::netlistdb
