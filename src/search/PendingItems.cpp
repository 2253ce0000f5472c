#include "search/PendingItems.h"

#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNetlist.h>
#include <netlistdb/VDBSearchParam.h>

namespace kvr::netlistdb {

namespace {

bool isUserDeclared(const IVDBInstance &instance)
{
    const IVDBNetlist *module = instance.getModule();
    return module != nullptr && module->isUserDeclared();
}

} // namespace

void PendingItems::pop()
{
    if (m_empty) {
        return;
    }
    m_frontInstance = nullptr;
    if (m_unopened != nullptr) {
        m_members.open(m_unopened->getModule(), m_param);
        m_unopened = nullptr;
    }
    while (!m_members.next(m_front)) {
        IVDBInstance *child = nextChild();
        if (child == nullptr) {
            m_empty = true;
            m_front = nullptr;
            return;
        }
        if (visit(child)) {
            return;
        }
    }
}

void PendingItems::appendStart(IVDBInstance *instance)
{
    const bool userDeclared = isUserDeclared(*instance);
    if (!userDeclared && m_param.userModulesOnly) {
        return;
    }
    list(instance, userDeclared || !m_param.collapseNonUserModules);
}

void PendingItems::appendChildren(IVDBInstance *parent)
{
    m_parents.push_back(parent);
    if (m_empty) {
        m_empty = false;
        pop();
    }
}

IVDBInstance *PendingItems::nextChild()
{
    while (!m_parents.empty()) {
        const std::vector<IVDBInstance *> &children = m_parents.front()->getSubInstances();
        while (m_nextChild < children.size()) {
            if (IVDBInstance *child = children[m_nextChild++]) {
                return child;
            }
        }
        m_parents.pop_front();
        m_nextChild = 0;
    }
    return nullptr;
}

bool PendingItems::visit(IVDBInstance *instance)
{
    const bool userDeclared = isUserDeclared(*instance);
    if (!userDeclared && m_param.userModulesOnly) {
        return false;
    }
    if (m_param.collapseNonUserModules) {
        const IVDBInstance *owner = instance->getOwnerInstance();
        if (owner != nullptr && !isUserDeclared(*owner)) {
            // Below a collapsed instance nothing shows but the members of what the user wrote.
            if (userDeclared) {
                m_members.open(instance->getModule(), m_param);
            }
            return false;
        }
    }
    list(instance, userDeclared || !m_param.collapseNonUserModules);
    return true;
}

void PendingItems::list(IVDBInstance *instance, bool withMembers)
{
    m_empty = false;
    m_front = instance;
    m_frontInstance = instance;
    m_unopened = withMembers ? instance : nullptr;
}

} // namespace kvr::netlistdb
