#pragma once

#include "search/InstanceMembers.h"
#include "search/ModuleMemo.h"
#include "search/Prefetch.h"

#include <netlistdb/VDBInstance.h>
#include <netlistdb/VDBSearchParam.h>

#include <cstddef>
#include <deque>
#include <typeinfo>
#include <vector>

namespace kvr::netlistdb {

/// The sub-instances that an instance had at one moment.
class SubInstances {
  public:
    SubInstances() = default;
    /// Our own class only ever appends to its list, so the list and its length say the same as a copy.
    explicit SubInstances(const IVDBInstance &instance) : m_list(&instance.getSubInstances()), m_count(m_list->size())
    {
        if (typeid(instance) != typeid(VDBInstance)) {
            m_copy = *m_list;
            m_list = nullptr;
        }
    }

    std::size_t count() const { return m_count; }
    const std::vector<IVDBInstance *> &list() const { return m_list != nullptr ? *m_list : m_copy; }

  private:
    const std::vector<IVDBInstance *> *m_list = nullptr; ///< null: m_copy
    std::vector<IVDBInstance *> m_copy;
    std::size_t m_count = 0;
};

/// The items that a breadth-first walk has still to visit, as a queue that fills itself on demand: it keeps the
/// sub-instances of those that the walk has stepped past, and looks at one or at a member when the front gets there. To
/// step past an instance of our own class therefore costs the same whether it has one child or a million.
///
/// The item behind one that is removed is looked for on demand, so that the net matchers never come to the ports. What
/// every instance of a walk goes through stands in this header: a call costs more than the work.
class PendingItems {
  public:
    /// @p param must outlive the queue.
    explicit PendingItems(const VDBSearchParam &param) : m_param(param) {}

    /// Looks for the item at the front; false when the queue is empty. Skipped ports are lost to later calls.
    bool settle(PlainPorts plainPorts = PlainPorts::Visit) { return m_isSettled || findFront(plainPorts); }
    /// The item at the front of a settled queue. A port that a module lists as null is null as well.
    IVDBItem *front() const { return m_front; }
    /// The item at the front of a settled queue if it was queued as an instance, otherwise null.
    IVDBInstance *frontInstance() const { return m_frontInstance; }
    /// Removes the item at the front of a settled queue.
    void pop() { m_isSettled = false; }
    /// Fills an empty queue with an instance and its members.
    void appendStart(IVDBInstance *instance);
    /// Appends the sub-instances that @p parent has at the moment, each with its members.
    void appendChildren(const IVDBInstance &parent);

  private:
    bool findFront(PlainPorts plainPorts);
    /// The child at m_nextChild, or the first one behind it that is not null; null at the end of the walk.
    IVDBInstance *findChild();
    /// Puts a child at the front, or its members in line, as the record asks; true when it stands at the front.
    bool visit(IVDBInstance *instance);
    void list(IVDBInstance *instance, ModuleFacts &module);
    bool enterNextFamily();
    bool isBelowCollapsed(const IVDBInstance &instance);
    void openMembers(ModuleFacts &module);

    const VDBSearchParam &m_param;
    bool m_isSettled = false;
    bool m_hasUnopened = false; ///< the members of m_frontModule follow, and nobody has looked at them
    IVDBItem *m_front = nullptr;
    IVDBInstance *m_frontInstance = nullptr;
    ModuleFacts *m_frontModule = nullptr;
    InstanceMembers m_members; ///< the rest of the members that follow the front
    SubInstances m_children;   ///< these follow the members, from m_nextChild on
    std::size_t m_nextChild = 0;
    std::deque<SubInstances> m_families; ///< these follow those
    ModuleMemo m_modules;
};

inline void PendingItems::list(IVDBInstance *instance, ModuleFacts &module)
{
    m_isSettled = true;
    m_front = instance;
    m_frontInstance = instance;
    m_frontModule = &module;
    m_hasUnopened = module.isUserDeclared || !m_param.collapseNonUserModules;
}

inline IVDBInstance *PendingItems::findChild()
{
    do {
        for (; m_nextChild < m_children.count(); ++m_nextChild) {
            prefetchAhead(m_children.list(), m_nextChild);
            if (IVDBInstance *child = m_children.list()[m_nextChild]) {
                return child;
            }
        }
    } while (enterNextFamily());
    return nullptr;
}

inline bool PendingItems::visit(IVDBInstance *instance)
{
    ModuleFacts &module = m_modules.of(instance->getModule());
    if (m_param.collapseNonUserModules && isBelowCollapsed(*instance)) {
        // There nothing shows but the members of what the user wrote.
        m_frontModule = &module;
        m_hasUnopened = module.isUserDeclared;
        return false;
    }
    if (!module.isUserDeclared && m_param.userModulesOnly) {
        return false;
    }
    list(instance, module);
    return true;
}

inline bool PendingItems::findFront(PlainPorts plainPorts)
{
    m_frontInstance = nullptr;
    for (;;) {
        // When memory runs out in one of these steps, the next call takes it once more.
        if (m_hasUnopened && !m_frontModule->listsNothing(plainPorts)) {
            openMembers(*m_frontModule);
        }
        m_hasUnopened = false;
        if (m_members.next(m_front, plainPorts)) {
            m_isSettled = true;
            return true;
        }
        IVDBInstance *child = findChild();
        if (child == nullptr) {
            return false;
        }
        const bool isFront = visit(child);
        ++m_nextChild;
        if (isFront) {
            return true;
        }
    }
}

} // namespace kvr::netlistdb
