#pragma once

#include "search/PendingItems.h"

#include <netlistdb/BFSItemIterator.h>

namespace kvr::netlistdb {

/// A cursor for the net matchers over any iterator.
class AnyCursor {
  public:
    explicit AnyCursor(TreeIterator &iterator) : m_iterator(iterator) {}
    bool isEnd() { return m_iterator.isEnd(); }
    IVDBItem *getCurrent() { return m_iterator.getCurrent(); }
    void next() { m_iterator.next(); }
    IVDBItem *getContext() { return m_iterator.getContext(); }
    void setContext(IVDBItem *item) { m_iterator.setContext(item); }

  private:
    TreeIterator &m_iterator;
};

/// The same over the breadth-first iterator itself, not a class derived from it. It passes over ports, which no net
/// matcher reports: in a netlist of device cells they are most of the items.
class WalkCursor {
  public:
    explicit WalkCursor(BFSItemIterator &iterator) : m_iterator(iterator), m_pending(*iterator.m_pending) {}
    bool isEnd() { return !m_pending.settle(PlainPorts::Skip); }
    IVDBItem *getCurrent() { return m_pending.front(); }
    void next()
    {
        if (m_pending.frontInstance() == nullptr) {
            m_pending.pop();
        } else {
            m_iterator.stepOn();
        }
    }
    IVDBItem *getContext() { return m_iterator.m_context; }
    void setContext(IVDBItem *item) { m_iterator.m_context = item; }

  private:
    BFSItemIterator &m_iterator;
    PendingItems &m_pending;
};

} // namespace kvr::netlistdb
