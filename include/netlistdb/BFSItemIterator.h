#pragma once

#include <netlistdb/TreeIterator.h>
#include <netlistdb/VDBSearchParam.h>

#include <memory>

namespace kvr::netlistdb {

class IDesignDatabase;
class IVDBInstance;
class IVDBNetlist;
class PendingItems;

/// Walks the instance tree below a start instance level by level, listing with each instance its buses, nets and
/// ports. Lazy: a child or member is looked at when the cursor gets there, so that a step costs the same below an
/// instance with one child as below one with a million.
class NETLISTDB_EXPORT BFSItemIterator : public TreeIterator {
  public:
    /// Copies @p param. @p database is kept and not consulted; may be null.
    BFSItemIterator(IDesignDatabase *database, const VDBSearchParam &param);
    ~BFSItemIterator() override;
    BFSItemIterator(const BFSItemIterator &) = delete;
    BFSItemIterator &operator=(const BFSItemIterator &) = delete;

    IVDBItem *getCurrent() override;
    /// Appends what lies below the current item to the walk and steps on.
    /// @throws std::runtime_error "Unknown item" when the current item is an instance without module; the cursor stays.
    void next() override;
    bool isEnd() override;
    IVDBItem *getContext() override;
    void setContext(IVDBItem *item) override;

    /// Appends what lies below @p item, if it is an instance, to the walk.
    /// @throws std::runtime_error "Unknown item" for an instance without module.
    void fetchMoreItem(IVDBItem *item);

  private:
    friend class WalkCursor;

    void stepOn();
    void appendChildren(IVDBInstance &instance, const IVDBNetlist *module);

    VDBSearchParam m_param;
    [[maybe_unused]] IDesignDatabase *m_database;
    std::unique_ptr<PendingItems> m_pending;
    IVDBItem *m_context = nullptr;
};

} // namespace kvr::netlistdb
