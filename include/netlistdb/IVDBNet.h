#pragma once

#include <netlistdb/IVDBNetBase.h>

namespace kvr::netlistdb {

class IVDBNetBus;

/// One net of a netlist: one bit wide, unless it represents a whole memory.
class NETLISTDB_EXPORT IVDBNet : public IVDBNetBase {
  public:
    ~IVDBNet() override;
    /// The bus that the net is a bit of, or null. Not owned.
    virtual IVDBNetBus *getOwnerBus() = 0;
    /// True for the constant-one net.
    virtual bool isPwr() const = 0;
    /// True for the constant-zero net.
    virtual bool isGnd() const = 0;
    /// True when more than one thing drives the net.
    virtual bool isMultipleDriven() const = 0;
};

} // namespace kvr::netlistdb
