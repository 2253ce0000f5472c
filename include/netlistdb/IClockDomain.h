#pragma once

#include <netlistdb/IVDBItem.h>

namespace kvr::netlistdb {

class IVDBInstance;
class IVDBNet;

/// One clock net, named by where it sits in the instance tree.
class NETLISTDB_EXPORT IClockDomain : public IVDBItem {
  public:
    ~IClockDomain() override;
    /// The clock net. Never null, not owned.
    virtual IVDBNet *getNet() const = 0;
    /// The instance in whose scope the clock net is seen. Never null, not owned.
    virtual IVDBInstance *getInstance() const = 0;
};

} // namespace kvr::netlistdb
