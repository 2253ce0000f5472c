#pragma once

#include "search/InstanceMembers.h"
#include "search/KnownModules.h"
#include "search/Prefetch.h"

#include <netlistdb/IVDBInstance.h>
#include <netlistdb/VDBSearchParam.h>

#include <cstddef>
#include <deque>
#include <vector>

namespace kvr::netlistdb {

/// The items that a breadth-first walk has still to visit, as a queue that fills itself on demand: it keeps only the
/// instances whose children are to come, and looks at a child or a member when the front gets there. To step past an
/// instance therefore costs the same whether it has one child or a million.
///
/// The item behind one that is removed is looked for when somebody asks, so that whoever has no use for ports never
/// comes to them. What every instance of a walk goes through stands in this header: a call costs more than the work.
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
    /// The module that this instance had when it came to the front; may be null.
    const IVDBNetlist *frontModule() const { return m_frontModule->netlist; }
    /// Removes the item at the front of a settled queue.
    void pop() { m_isSettled = false; }
    /// Fills an empty queue with an instance and its members.
    void appendStart(IVDBInstance *instance);
    /// Appends the children of @p parent, each with its members.
    void appendChildren(IVDBInstance *parent) { m_parents.push_back(parent); }

  private:
    bool findFront(PlainPorts plainPorts);
    /// The child at m_nextChild, or the first one behind it that is not null; null at the end of the walk.
    IVDBInstance *findChild();
    /// Puts a child at the front, or its members in line, as the record asks; true when it stands at the front.
    bool visit(IVDBInstance *instance);
    void list(IVDBInstance *instance, KnownModule &module);
    bool enterNextParent();
    bool isBelowCollapsed(const IVDBInstance &instance);
    void openMembers(KnownModule &module);

    const VDBSearchParam &m_param;
    bool m_isSettled = false;
    bool m_hasUnopened = false; ///< the members of m_frontModule follow, and nobody has looked at them
    IVDBItem *m_front = nullptr;
    IVDBInstance *m_frontInstance = nullptr;
    KnownModule *m_frontModule = nullptr;
    InstanceMembers m_members;                               ///< the rest of the members that follow the front
    const std::vector<IVDBInstance *> *m_children = nullptr; ///< these follow the members, from m_nextChild on
    std::size_t m_nextChild = 0;
    std::deque<IVDBInstance *> m_parents; ///< whose children follow those
    KnownModules m_modules;
};

inline void PendingItems::list(IVDBInstance *instance, KnownModule &module)
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
        for (; m_children != nullptr && m_nextChild < m_children->size(); ++m_nextChild) {
            prefetchAhead(*m_children, m_nextChild);
            if (IVDBInstance *child = (*m_children)[m_nextChild]) {
                return child;
            }
        }
    } while (enterNextParent());
    return nullptr;
}

inline bool PendingItems::visit(IVDBInstance *instance)
{
    KnownModule &module = m_modules.of(instance->getModule());
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
