#pragma once

#include "netlist/AddressMap.h"

namespace Verific {
class Instance;
class Net;
class Netlist;
class Port;
} // namespace Verific

namespace kvr::netlistdb {

class IVDBInstance;
class IVDBNet;
class IVDBNetlist;
class IVDBPort;

/// Leads from built items to the netlist objects they were made from, and back.
///
/// Owns neither. A registration never overwrites: the first item made from a netlist object stays the one found from
/// it. A pool that does not record returns null for every look-up. Look-ups take constant time.
class VDBObjectPool {
  public:
    explicit VDBObjectPool(bool record);
    virtual ~VDBObjectPool();
    VDBObjectPool(const VDBObjectPool &) = delete;
    VDBObjectPool &operator=(const VDBObjectPool &) = delete;

    void registerNetlist(const Verific::Netlist *netlist, const IVDBNetlist *item);
    void registerNet(const Verific::Net *net, const IVDBNet *item);
    void registerPort(const Verific::Port *port, const IVDBPort *item);
    void registerInstance(const IVDBInstance *item, const Verific::Instance *instance);
    /// The item to find from a netlist instance. The imports register none: an unfolded tree holds many occurrences of
    /// one netlist instance.
    void registerOccurrence(const Verific::Instance *instance, const IVDBInstance *item);

    // All return null when nothing is registered.

    IVDBNetlist *find(const Verific::Netlist *netlist) const;
    Verific::Netlist *find(const IVDBNetlist *item) const;
    IVDBNet *find(const Verific::Net *net) const;
    Verific::Net *find(const IVDBNet *item) const;
    IVDBPort *find(const Verific::Port *port) const;
    Verific::Instance *find(const IVDBInstance *item) const;
    IVDBInstance *find(const Verific::Instance *instance) const;

    // Removal, before an item is deleted. Netlist objects are known by address alone here and may be gone already.

    /// Removes the item's entry, and the one of its netlist object when that leads to this item.
    void eraseNetlist(const IVDBNetlist *item);
    void eraseNet(const IVDBNet *item);
    void eraseInstance(const IVDBInstance *item);
    /// Removes the port's entry when it leads to @p item.
    void erasePort(const Verific::Port *port, const IVDBPort *item);
    /// Changes every port entry that leads to a key of @p replacements to lead to that key's value, and removes it
    /// where the value is 0.
    void replacePorts(const AddressMap &replacements);
    /// Removes everything.
    void clear();
    bool empty() const;

  private:
    AddressMap m_netlistToItem;
    AddressMap m_itemToNetlist;
    AddressMap m_netToItem;
    AddressMap m_itemToNet;
    AddressMap m_portToItem;
    AddressMap m_itemToInstance;
    AddressMap m_instanceToItem;
    bool m_record;
};

} // namespace kvr::netlistdb
