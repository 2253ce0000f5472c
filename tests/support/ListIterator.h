#pragma once

#include <netlistdb/TreeIterator.h>

#include <cstddef>
#include <utility>
#include <vector>

namespace testsupport {

/// A cursor over any list of items.
class ListIterator : public kvr::netlistdb::TreeIterator {
  public:
    explicit ListIterator(std::vector<kvr::netlistdb::IVDBItem *> items) : m_items(std::move(items)) {}

    kvr::netlistdb::IVDBItem *getCurrent() override { return isEnd() ? nullptr : m_items[m_position]; }
    void next() override { m_position += isEnd() ? 0 : 1; }
    bool isEnd() override { return m_position == m_items.size(); }
    kvr::netlistdb::IVDBItem *getContext() override { return m_context; }
    void setContext(kvr::netlistdb::IVDBItem *item) override { m_context = item; }

  private:
    std::vector<kvr::netlistdb::IVDBItem *> m_items;
    std::size_t m_position = 0;
    kvr::netlistdb::IVDBItem *m_context = nullptr;
};

} // namespace testsupport
