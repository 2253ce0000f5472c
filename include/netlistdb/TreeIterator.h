#pragma once

#include <netlistdb/Export.h>

namespace kvr::netlistdb {

class IVDBItem;

/// A forward-only cursor over design items. Items are not owned and must outlive the cursor.
class NETLISTDB_EXPORT TreeIterator {
  public:
    virtual ~TreeIterator();
    /// The item under the cursor, or null at the end.
    virtual IVDBItem *getCurrent() = 0;
    /// Steps on; at the end does nothing.
    virtual void next() = 0;
    virtual bool isEnd() = 0;
    /// The item stored with setContext: the net matchers keep the instance there whose nets follow.
    virtual IVDBItem *getContext() = 0;
    virtual void setContext(IVDBItem *item) = 0;

  protected:
    TreeIterator() = default;
    TreeIterator(const TreeIterator &) = default;
    TreeIterator &operator=(const TreeIterator &) = default;
};

} // namespace kvr::netlistdb
