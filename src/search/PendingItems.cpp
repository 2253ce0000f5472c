#include "search/PendingItems.h"

#include <utility>

namespace kvr::netlistdb {

void PendingItems::appendStart(IVDBInstance *instance)
{
    ModuleFacts &module = m_modules.of(instance->getModule());
    if (module.isUserDeclared || !m_param.userModulesOnly) {
        list(instance, module);
    }
}

void PendingItems::appendChildren(const IVDBInstance &parent)
{
    SubInstances children(parent);
    if (children.count() != 0) {
        m_families.push_back(std::move(children));
    }
}

bool PendingItems::enterNextFamily()
{
    const bool hasNext = !m_families.empty();
    if (hasNext) {
        m_children = std::move(m_families.front());
        m_nextChild = 0;
        m_families.pop_front();
    }
    return hasNext;
}

bool PendingItems::isBelowCollapsed(const IVDBInstance &instance)
{
    const IVDBInstance *owner = instance.getOwnerInstance();
    return owner != nullptr && !m_modules.of(owner->getModule()).isUserDeclared;
}

void PendingItems::openMembers(ModuleFacts &module)
{
    if (module.netlist != nullptr) {
        m_members.open(module, m_param);
    }
}

} // namespace kvr::netlistdb
