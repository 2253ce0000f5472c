#pragma once

#include "search/InstanceMembers.h"
#include "search/KnownModules.h"

#include <cstddef>
#include <deque>
#include <vector>

namespace kvr::netlistdb {

class IVDBInstance;
class IVDBItem;
class IVDBNetlist;
class VDBSearchParam;

/// The items that a breadth-first walk has still to visit, as a queue that fills itself on demand: it keeps only the
/// instances whose children are to come, and looks at a child or a member when the front gets there. To step past an
/// instance therefore costs the same whether it has one child or a million.
///
/// The item behind one that is removed is looked for when somebody asks, so that whoever has no use for ports never
/// comes to them.
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
    IVDBInstance *nextChild();
    /// Puts a child at the front, or its members in line, as the record asks; true when it stands at the front.
    bool visit(IVDBInstance *instance, PlainPorts plainPorts);
    void list(IVDBInstance *instance, KnownModule &module);
    void openMembers(KnownModule &module, PlainPorts plainPorts);

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

} // namespace kvr::netlistdb
