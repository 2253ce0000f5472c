#pragma once

#include <netlistdb/IVDBItem.h>
#include <netlistdb/IWidth.h>

namespace kvr::netlistdb {

class IVDBLineInfo;

/// What nets and net buses share: the flags by which a debugger decides what may be probed.
class NETLISTDB_EXPORT IVDBNetBase : public IVDBItem, public IWidth {
  public:
    ~IVDBNetBase() override;
    /// True exactly when the item has a source position.
    virtual bool isUserDeclared() const = 0;
    /// True when an on-chip debugger may offer the item for probing: neither protected nor excluded.
    virtual bool isSelectableForDebugger() const = 0;
    /// True when the source marks the item as protected.
    virtual bool isProtected() const = 0;
    /// Source position, owned by the item; null when there is none.
    virtual IVDBLineInfo *getLineInfo() = 0;
};

} // namespace kvr::netlistdb
