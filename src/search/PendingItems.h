#pragma once

#include "search/InstanceMembers.h"

#include <cstddef>
#include <deque>

namespace kvr::netlistdb {

class IVDBInstance;
class IVDBItem;
class VDBSearchParam;

/// The items that a breadth-first walk has still to visit, as a queue that fills itself on demand: it keeps only the
/// instances whose children are to come, and looks at a child or a member when the front gets there. To step past an
/// instance therefore costs the same whether it has one child or a million.
class PendingItems {
  public:
    /// @p param must outlive the queue.
    explicit PendingItems(const VDBSearchParam &param) : m_param(param) {}

    bool empty() const { return m_empty; }
    /// The item at the front, null when the queue is empty. A port that a module lists as null is null as well.
    IVDBItem *front() const { return m_front; }
    /// The item at the front if it was queued as an instance, otherwise null.
    IVDBInstance *frontInstance() const { return m_frontInstance; }
    /// Removes the item at the front, if there is one.
    void pop();
    /// Fills an empty queue with an instance and its members.
    void appendStart(IVDBInstance *instance);
    /// Appends the children of @p parent, each with its members.
    void appendChildren(IVDBInstance *parent);

  private:
    IVDBInstance *nextChild();
    /// Puts a child at the front, or its members in line, as the record asks; true when it stands at the front.
    bool visit(IVDBInstance *instance);
    void list(IVDBInstance *instance, bool withMembers);

    const VDBSearchParam &m_param;
    bool m_empty = true;
    IVDBItem *m_front = nullptr;
    IVDBInstance *m_frontInstance = nullptr;
    IVDBInstance *m_unopened = nullptr;   ///< its members follow the front, and nobody has looked at them
    InstanceMembers m_members;            ///< the rest of the members that follow the front
    std::deque<IVDBInstance *> m_parents; ///< their children follow; those of the first one are under way
    std::size_t m_nextChild = 0;
};

} // namespace kvr::netlistdb
