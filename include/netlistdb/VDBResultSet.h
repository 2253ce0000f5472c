#pragma once

#include <netlistdb/IVDBResultSet.h>

#include <functional>
#include <memory>
#include <mutex>

namespace kvr::netlistdb {

class TreeIterator;

/// A result set over a tree iterator and a predicate that moves the iterator to the next result.
class NETLISTDB_EXPORT VDBResultSet : public IVDBResultSet {
  public:
    /// Takes ownership of @p iterator, on which @p predicate works.
    VDBResultSet(TreeIterator *iterator, std::function<bool()> predicate);
    ~VDBResultSet() override;
    VDBResultSet(const VDBResultSet &) = delete;
    VDBResultSet &operator=(const VDBResultSet &) = delete;

    void cancel() override;
    void next() override;
    void previous() override;
    std::uint32_t status() const override;
    IVDBItem *getCurrent() override;
    IVDBItem *getContext() override;

  private:
    std::uint32_t m_status = RESULT_MATCH;
    std::unique_ptr<TreeIterator> m_iterator;
    std::function<bool()> m_predicate;
    std::mutex m_lock;
    bool m_started = false;
    bool m_active = true;
};

} // namespace kvr::netlistdb
