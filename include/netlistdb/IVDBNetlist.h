#pragma once

#include <netlistdb/IVDBItem.h>

#include <vector>

namespace kvr::netlistdb {

class IVDBLineInfo;
class IVDBNet;
class IVDBNetBus;
class IVDBPort;

/// A module definition: its nets, buses and ports. Shared by all its instances.
class NETLISTDB_EXPORT IVDBNetlist : public IVDBItem {
  public:
    ~IVDBNetlist() override;
    /// Name of the library that holds the module; may be empty. Lives as long as the netlist.
    virtual const std::string &GetLibName() const = 0;
    /// Net buses in netlist order; owned by the netlist.
    virtual const std::vector<IVDBNetBus *> &getAllNetBus() const = 0;
    /// A new list: with @p fromBuses the members of every bus, bus by bus; without, the nets that are in no bus. The
    /// two never share a net, and together they are every net. Costs a copy of the list.
    virtual std::vector<IVDBNet *> getNets(bool fromBuses) const = 0;
    /// Ports in netlist order, one per bit; owned by the netlist.
    virtual const std::vector<IVDBPort *> &getPorts() const = 0;
    /// True exactly when the module has a source position.
    virtual bool isUserDeclared() const = 0;
    /// Source position, owned by the netlist; null when there is none.
    virtual IVDBLineInfo *getLineInfo() = 0;
};

} // namespace kvr::netlistdb
