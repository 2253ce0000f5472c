#include "search/PendingItems.h"

#include "search/Prefetch.h"

#include <netlistdb/IVDBInstance.h>
#include <netlistdb/VDBSearchParam.h>

namespace kvr::netlistdb {

bool PendingItems::findFront(PlainPorts plainPorts)
{
    if (m_hasUnopened) {
        m_hasUnopened = false;
        openMembers(*m_frontModule, plainPorts);
    }
    m_frontInstance = nullptr;
    while (!m_members.next(m_front, plainPorts)) {
        IVDBInstance *child = nextChild();
        if (child == nullptr) {
            return false;
        }
        if (visit(child, plainPorts)) {
            return true;
        }
    }
    m_isSettled = true;
    return true;
}

void PendingItems::appendStart(IVDBInstance *instance)
{
    KnownModule &module = m_modules.of(instance->getModule());
    if (module.isUserDeclared || !m_param.userModulesOnly) {
        list(instance, module);
    }
}

IVDBInstance *PendingItems::nextChild()
{
    for (;;) {
        while (m_children != nullptr && m_nextChild < m_children->size()) {
            prefetchAhead(*m_children, m_nextChild);
            if (IVDBInstance *child = (*m_children)[m_nextChild++]) {
                return child;
            }
        }
        if (m_parents.empty()) {
            m_children = nullptr;
            return nullptr;
        }
        m_children = &m_parents.front()->getSubInstances();
        m_nextChild = 0;
        m_parents.pop_front();
    }
}

bool PendingItems::visit(IVDBInstance *instance, PlainPorts plainPorts)
{
    KnownModule &module = m_modules.of(instance->getModule());
    if (m_param.collapseNonUserModules) {
        const IVDBInstance *owner = instance->getOwnerInstance();
        if (owner != nullptr && !m_modules.of(owner->getModule()).isUserDeclared) {
            // Below a collapsed instance nothing shows but the members of what the user wrote.
            if (module.isUserDeclared) {
                openMembers(module, plainPorts);
            }
            return false;
        }
    }
    if (!module.isUserDeclared && m_param.userModulesOnly) {
        return false;
    }
    list(instance, module);
    return true;
}

void PendingItems::list(IVDBInstance *instance, KnownModule &module)
{
    m_isSettled = true;
    m_front = instance;
    m_frontInstance = instance;
    m_frontModule = &module;
    m_hasUnopened = module.isUserDeclared || !m_param.collapseNonUserModules;
}

void PendingItems::openMembers(KnownModule &module, PlainPorts plainPorts)
{
    const bool hasNothing = module.listsOnlyPorts && module.portsArePlain && plainPorts == PlainPorts::Skip;
    if (module.netlist != nullptr && !hasNothing) {
        m_members.open(module, m_param);
    }
}

} // namespace kvr::netlistdb
