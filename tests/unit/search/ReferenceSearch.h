#pragma once

#include <netlistdb/TreeIterator.h>
#include <netlistdb/VDBSearchParam.h>

#include <deque>
#include <vector>

namespace kvr::netlistdb {
class IVDBInstance;
class IVDBNetBase;
} // namespace kvr::netlistdb

namespace testsupport {

/// The breadth-first walk with a queue that really holds every item: slow and plain.
class ReferenceIterator : public kvr::netlistdb::TreeIterator {
  public:
    explicit ReferenceIterator(const kvr::netlistdb::VDBSearchParam &param);

    kvr::netlistdb::IVDBItem *getCurrent() override;
    void next() override;
    bool isEnd() override;
    kvr::netlistdb::IVDBItem *getContext() override;
    void setContext(kvr::netlistdb::IVDBItem *item) override;
    void fetchMoreItem(kvr::netlistdb::IVDBItem *item);

  private:
    void collect(kvr::netlistdb::IVDBInstance *instance);
    void sort(std::vector<kvr::netlistdb::IVDBNetBase *> &members) const;

    kvr::netlistdb::VDBSearchParam m_param;
    std::deque<kvr::netlistdb::IVDBItem *> m_queue;
    kvr::netlistdb::IVDBItem *m_context = nullptr;
};

/// One step of a search, with a new string for every full name.
bool referenceMatch(kvr::netlistdb::TreeIterator &iterator, const kvr::netlistdb::VDBSearchParam &param);

} // namespace testsupport
