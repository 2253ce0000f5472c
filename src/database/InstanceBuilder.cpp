#include "database/InstanceBuilder.h"

#include "clock/ClockAnalysis.h"
#include "netlist/VDBObjectPool.h"
#include "netlist/verific_queries.h"

#include <netlistdb/VDBInstance.h>

#include <DataBase.h>

#include <memory>
#include <utility>

namespace kvr::netlistdb {

std::optional<InstanceBuilder::Child> InstanceBuilder::child(const Verific::Instance *instance) const
{
    const auto module = m_modules.find(instance->View());
    if (module == m_modules.end()) {
        return std::nullopt;
    }
    const Verific::Netlist *const netlist = module->first;
    return Child{instance,
                 netlist,
                 module->second,
                 {instance->Name(), verific_queries::parameterCount(*instance)},
                 netlist->GetInsts()->Size() != 0,
                 netlist->IsBlackBox() != 0};
}

const InstanceBuilder::Children &InstanceBuilder::childrenOf(const Verific::Netlist &netlist)
{
    const auto [entry, isNew] = m_children.try_emplace(&netlist);
    Children &children = entry->second;
    if (isNew) {
        children.all.reserve(netlist.GetInsts()->Size());
        Verific::MapIter instances;
        const Verific::Instance *instance = nullptr;
        FOREACH_INSTANCE_OF_NETLIST (&netlist, instances, instance) {
            std::optional<Child> made = child(instance);
            if (!made) {
                children.complete = false;
                break;
            }
            children.all.push_back(std::move(*made));
        }
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
