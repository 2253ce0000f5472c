#include "netlist/VDBObjectPool.h"

namespace kvr::netlistdb {

namespace {

template <typename T> T *lookUp(const AddressMap &map, const void *key)
{
    const AddressMap::Address *value = map.find(addressOf(key));
    return value != nullptr ? reinterpret_cast<T *>(*value) : nullptr;
}

/// Removes @p key when it leads to @p value.
void eraseEntry(AddressMap &map, AddressMap::Address key, AddressMap::Address value)
{
    const AddressMap::Address *found = map.find(key);
    if (found != nullptr && *found == value) {
        map.erase(key);
    }
}

/// Removes @p item from @p toObject and, where its object leads back to it, from @p toItem.
void eraseBothWays(AddressMap &toObject, AddressMap &toItem, const void *item)
{
    if (const AddressMap::Address *object = toObject.find(addressOf(item))) {
        eraseEntry(toItem, *object, addressOf(item));
        toObject.erase(addressOf(item));
    }
}

} // namespace

VDBObjectPool::VDBObjectPool(bool record) : m_record(record) {}

VDBObjectPool::~VDBObjectPool() = default;

// The entry of the item is made first: through it, what a failing registration left is found and removed.

void VDBObjectPool::registerNetlist(const Verific::Netlist *netlist, const IVDBNetlist *item)
{
    if (!m_record) {
        return;
    }
    m_itemToNetlist.insertIfAbsent(addressOf(item), addressOf(netlist));
    m_netlistToItem.insertIfAbsent(addressOf(netlist), addressOf(item));
}

void VDBObjectPool::registerNet(const Verific::Net *net, const IVDBNet *item)
{
    if (!m_record) {
        return;
    }
    m_itemToNet.insertIfAbsent(addressOf(item), addressOf(net));
    m_netToItem.insertIfAbsent(addressOf(net), addressOf(item));
}

void VDBObjectPool::registerPort(const Verific::Port *port, const IVDBPort *item)
{
    if (!m_record) {
        return;
    }
    m_portToItem.insertIfAbsent(addressOf(port), addressOf(item));
}

void VDBObjectPool::registerInstance(const IVDBInstance *item, const Verific::Instance *instance)
{
    if (!m_record) {
        return;
    }
    m_itemToInstance.insertIfAbsent(addressOf(item), addressOf(instance));
}

void VDBObjectPool::registerOccurrence(const Verific::Instance *instance, const IVDBInstance *item)
{
    if (!m_record) {
        return;
    }
    m_instanceToItem.insertIfAbsent(addressOf(instance), addressOf(item));
}

IVDBNetlist *VDBObjectPool::find(const Verific::Netlist *netlist) const
{
    return lookUp<IVDBNetlist>(m_netlistToItem, netlist);
}

Verific::Netlist *VDBObjectPool::find(const IVDBNetlist *item) const
{
    return lookUp<Verific::Netlist>(m_itemToNetlist, item);
}

IVDBNet *VDBObjectPool::find(const Verific::Net *net) const
{
    return lookUp<IVDBNet>(m_netToItem, net);
}

Verific::Net *VDBObjectPool::find(const IVDBNet *item) const
{
    return lookUp<Verific::Net>(m_itemToNet, item);
}

IVDBPort *VDBObjectPool::find(const Verific::Port *port) const
{
    return lookUp<IVDBPort>(m_portToItem, port);
}

Verific::Instance *VDBObjectPool::find(const IVDBInstance *item) const
{
    return lookUp<Verific::Instance>(m_itemToInstance, item);
}

IVDBInstance *VDBObjectPool::find(const Verific::Instance *instance) const
{
    return lookUp<IVDBInstance>(m_instanceToItem, instance);
}

void VDBObjectPool::eraseNetlist(const IVDBNetlist *item)
{
    eraseBothWays(m_itemToNetlist, m_netlistToItem, item);
}

void VDBObjectPool::eraseNet(const IVDBNet *item)
{
    eraseBothWays(m_itemToNet, m_netToItem, item);
}

void VDBObjectPool::eraseInstance(const IVDBInstance *item)
{
    eraseBothWays(m_itemToInstance, m_instanceToItem, item);
}

void VDBObjectPool::erasePort(const Verific::Port *port, const IVDBPort *item)
{
    eraseEntry(m_portToItem, addressOf(port), addressOf(item));
}

void VDBObjectPool::replacePorts(const AddressMap &replacements)
{
    m_portToItem.eraseIf([&](AddressMap::Address, AddressMap::Address &item) {
        const AddressMap::Address *replacement = replacements.find(item);
        if (replacement == nullptr) {
            return false;
        }
        item = *replacement;
        return item == 0;
    });
}

void VDBObjectPool::clear()
{
    for (AddressMap *map : {&m_netlistToItem, &m_itemToNetlist, &m_netToItem, &m_itemToNet, &m_portToItem,
                            &m_itemToInstance, &m_instanceToItem}) {
        map->clear();
    }
}

bool VDBObjectPool::empty() const
{
    return m_netlistToItem.empty() && m_itemToNetlist.empty() && m_netToItem.empty() && m_itemToNet.empty() &&
           m_portToItem.empty() && m_itemToInstance.empty() && m_instanceToItem.empty();
}

} // namespace kvr::netlistdb
