#pragma once

#include <netlistdb/IVDBNetlist.h>

#include <memory>

namespace Verific {
class Netlist;
}

namespace kvr::netlistdb {

/// A module definition made from a netlist of the netlist database and filled by the import.
class NETLISTDB_EXPORT VDBNetlist : public IVDBNetlist {
  public:
    /// @p name and @p libName are fall-backs: the names of the netlist's own cell and library win where present.
    /// @throws std::invalid_argument "netlist is nullptr"
    VDBNetlist(const Verific::Netlist *netlist, const std::string &name, const std::string &libName);
    /// Deletes buses (with their members), nets and ports, in this order.
    ~VDBNetlist() override;
    VDBNetlist(const VDBNetlist &) = delete;
    VDBNetlist &operator=(const VDBNetlist &) = delete;

    const std::string &getName() const override;
    std::uint32_t getItemType() const override;
    const std::string &GetLibName() const override;
    const std::vector<IVDBNetBus *> &getAllNetBus() const override;
    std::vector<IVDBNet *> getNets(bool fromBuses) const override;
    const std::vector<IVDBPort *> &getPorts() const override;
    bool isUserDeclared() const override;
    IVDBLineInfo *getLineInfo() override;

    /// Appends a net that is in no bus and takes ownership. Nothing is checked: the caller adds nothing twice, nor
    /// null.
    void addNet(IVDBNet *net);
    /// Appends a bus, and with it its members; as addNet otherwise.
    void addNetBus(IVDBNetBus *bus);
    /// Appends a port; as addNet otherwise.
    void addPort(IVDBPort *port);
    /// Gives back the room that the lists grew by while they were filled.
    void shrinkToFit();

    /// The list behind getNets(false), without a copy.
    const std::vector<IVDBNet *> &plainNets() const;

  private:
    std::string m_name;
    std::string m_libName;
    std::vector<IVDBNetBus *> m_netBuses;
    std::vector<IVDBNet *> m_nets;
    std::vector<IVDBPort *> m_ports;
    std::unique_ptr<IVDBLineInfo> m_lineInfo;
};

} // namespace kvr::netlistdb
