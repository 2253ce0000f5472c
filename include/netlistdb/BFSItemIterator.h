#pragma once

#include <netlistdb/TreeIterator.h>
#include <netlistdb/VDBSearchParam.h>

#include <memory>

namespace kvr::netlistdb {

class IDesignDatabase;
class IVDBInstance;
class PendingItems;

/// Walks the instance tree below a start instance level by level, listing with each instance its buses, nets and
/// ports. Lazy: the sub-instances of an instance are those that it has when the cursor steps past it, but each is
/// looked at when the cursor gets there, so that the step costs the same whether there is one or a million (with
/// classes of the caller's own, whose list is copied: in proportion to their number).
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
    void appendChildren(const IVDBInstance &instance);

    VDBSearchParam m_param;
    [[maybe_unused]] IDesignDatabase *m_database;
    std::unique_ptr<PendingItems> m_pending;
    IVDBItem *m_context = nullptr;
};

} // namespace kvr::netlistdb
