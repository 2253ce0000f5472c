#include "search/PendingItems.h"

namespace kvr::netlistdb {

void PendingItems::appendStart(IVDBInstance *instance)
{
    KnownModule &module = m_modules.of(instance->getModule());
    if (module.isUserDeclared || !m_param.userModulesOnly) {
        list(instance, module);
    }
}

bool PendingItems::enterNextParent()
{
    const bool hasParent = !m_parents.empty();
    if (hasParent) {
        m_children = &m_parents.front()->getSubInstances();
        m_nextChild = 0;
        m_parents.pop_front();
    }
    return hasParent;
}

bool PendingItems::isBelowCollapsed(const IVDBInstance &instance)
{
    const IVDBInstance *owner = instance.getOwnerInstance();
    return owner != nullptr && !m_modules.of(owner->getModule()).isUserDeclared;
}

void PendingItems::openMembers(KnownModule &module)
{
    if (module.netlist != nullptr) {
        m_members.open(module, m_param);
    }
}

} // namespace kvr::netlistdb
