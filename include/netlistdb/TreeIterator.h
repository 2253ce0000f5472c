#pragma once

#include <netlistdb/Export.h>

namespace kvr::netlistdb {

class IVDBItem;

/// A forward-only cursor over design items. Items are not owned and must outlive the cursor.
class NETLISTDB_EXPORT TreeIterator {
  public:
    virtual ~TreeIterator();
    /// The item under the cursor, or null at the end. Not owned.
    virtual IVDBItem *getCurrent() = 0;
    /// Steps on; at the end does nothing.
    virtual void next() = 0;
    /// True when there is no item left under the cursor.
    virtual bool isEnd() = 0;
    /// The item stored with setContext: the net matchers keep the instance there whose nets follow. Null at first.
    virtual IVDBItem *getContext() = 0;
    /// Stores @p item, which may be null, for getContext. Not owned; stepping does not change it.
    virtual void setContext(IVDBItem *item) = 0;

  protected:
    /// @{
    /// For derived classes alone: assigning through the interface would slice.
    TreeIterator() = default;
    TreeIterator(const TreeIterator &) = default;
    TreeIterator &operator=(const TreeIterator &) = default;
    /// @}
};

} // namespace kvr::netlistdb
