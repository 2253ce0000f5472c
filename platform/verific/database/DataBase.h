#pragma once

// The netlist database: libset, libraries, cells, netlists, and what is in a netlist. One thread at a time.

#include "Instance.h"
#include "Library.h"
#include "Net.h"
#include "Netlist.h"
#include "Port.h"
#include "PortRef.h"

namespace Verific::loops {

// Tables behind the loops below; a null owner has none.

inline const Map *librariesOf(const Libset *libset)
{
    return libset != nullptr ? libset->GetLibraries() : nullptr;
}
inline const Map *cellsOf(const Library *library)
{
    return library != nullptr ? library->GetCells() : nullptr;
}
inline const Map *netlistsOf(const Cell *cell)
{
    return cell != nullptr ? cell->GetNetlists() : nullptr;
}
inline const Map *portsOf(const Netlist *netlist)
{
    return netlist != nullptr ? netlist->GetPorts() : nullptr;
}
inline const Map *portBusesOf(const Netlist *netlist)
{
    return netlist != nullptr ? netlist->GetPortBuses() : nullptr;
}
inline const Map *netsOf(const Netlist *netlist)
{
    return netlist != nullptr ? netlist->GetNets() : nullptr;
}
inline const Map *netBusesOf(const Netlist *netlist)
{
    return netlist != nullptr ? netlist->GetNetBuses() : nullptr;
}
inline const Map *instancesOf(const Netlist *netlist)
{
    return netlist != nullptr ? netlist->GetInsts() : nullptr;
}
inline const Set *referencesOf(const Netlist *netlist)
{
    return netlist != nullptr ? netlist->GetReferences() : nullptr;
}

} // namespace Verific::loops

// Loops in order of addition. The walked object may be deleted in the loop, others must not be added.

#define FOREACH_LIBRARY_OF_LIBSET(libset, mi, lib)                                                                     \
    FOREACH_MAP_ITEM (::Verific::loops::librariesOf(libset), mi, nullptr, &(lib))
#define FOREACH_CELL_OF_LIBRARY(lib, mi, cell) FOREACH_MAP_ITEM (::Verific::loops::cellsOf(lib), mi, nullptr, &(cell))
#define FOREACH_NETLIST_OF_CELL(cell, mi, netlist)                                                                     \
    FOREACH_MAP_ITEM (::Verific::loops::netlistsOf(cell), mi, nullptr, &(netlist))
#define FOREACH_PORT_OF_NETLIST(netlist, mi, port)                                                                     \
    FOREACH_MAP_ITEM (::Verific::loops::portsOf(netlist), mi, nullptr, &(port))
#define FOREACH_PORTBUS_OF_NETLIST(netlist, mi, bus)                                                                   \
    FOREACH_MAP_ITEM (::Verific::loops::portBusesOf(netlist), mi, nullptr, &(bus))
#define FOREACH_NET_OF_NETLIST(netlist, mi, net)                                                                       \
    FOREACH_MAP_ITEM (::Verific::loops::netsOf(netlist), mi, nullptr, &(net))
#define FOREACH_NETBUS_OF_NETLIST(netlist, mi, bus)                                                                    \
    FOREACH_MAP_ITEM (::Verific::loops::netBusesOf(netlist), mi, nullptr, &(bus))
#define FOREACH_INSTANCE_OF_NETLIST(netlist, mi, inst)                                                                 \
    FOREACH_MAP_ITEM (::Verific::loops::instancesOf(netlist), mi, nullptr, &(inst))
#define FOREACH_REFERENCE_OF_NETLIST(netlist, si, inst)                                                                \
    FOREACH_SET_ITEM (::Verific::loops::referencesOf(netlist), si, &(inst))
