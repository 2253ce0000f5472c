#include <netlistdb/VDBNetlist.h>

#include "model/LiveItems.h"
#include "model/SourcePosition.h"
#include "netlist/verific_queries.h"

#include <netlistdb/IVDBLineInfo.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/IVDBNetBus.h>
#include <netlistdb/IVDBPort.h>

#include <DataBase.h>

#include <stdexcept>

namespace kvr::netlistdb {

VDBNetlist::VDBNetlist(const Verific::Netlist *netlist, const std::string &name, const std::string &libName)
    : m_name(name), m_libName(libName)
{
    if (netlist == nullptr) {
        throw std::invalid_argument("netlist is nullptr");
    }
    if (const char *cell = verific_queries::cellName(*netlist)) {
        m_name = cell;
    }
    if (const char *library = verific_queries::libraryName(*netlist)) {
        m_libName = library;
    }
    m_lineInfo = sourcePosition(*netlist);
    countItem(LiveItem::Netlist);
}

VDBNetlist::~VDBNetlist()
{
    for (IVDBNetBus *bus : m_netBuses) {
        delete bus;
    }
    for (IVDBNet *net : m_nets) {
        delete net;
    }
    for (IVDBPort *port : m_ports) {
        delete port;
    }
    uncountItem(LiveItem::Netlist);
}

const std::string &VDBNetlist::getName() const
{
    return m_name;
}

std::uint32_t VDBNetlist::getItemType() const
{
    return ITEM_NETLIST;
}

const std::string &VDBNetlist::GetLibName() const
{
    return m_libName;
}

const std::vector<IVDBNetBus *> &VDBNetlist::getAllNetBus() const
{
    return m_netBuses;
}

std::vector<IVDBNet *> VDBNetlist::getNets(bool fromBuses) const
{
    if (!fromBuses) {
        return m_nets;
    }
    std::size_t count = 0;
    for (const IVDBNetBus *bus : m_netBuses) {
        count += bus->getNets().size();
    }
    std::vector<IVDBNet *> members;
    members.reserve(count);
    for (const IVDBNetBus *bus : m_netBuses) {
        const std::vector<IVDBNet *> &nets = bus->getNets();
        members.insert(members.end(), nets.begin(), nets.end());
    }
    return members;
}

const std::vector<IVDBPort *> &VDBNetlist::getPorts() const
{
    return m_ports;
}

bool VDBNetlist::isUserDeclared() const
{
    return m_lineInfo != nullptr;
}

IVDBLineInfo *VDBNetlist::getLineInfo()
{
    return m_lineInfo.get();
}

void VDBNetlist::addNet(IVDBNet *net)
{
    m_nets.push_back(net);
}

void VDBNetlist::addNetBus(IVDBNetBus *bus)
{
    m_netBuses.push_back(bus);
}

void VDBNetlist::addPort(IVDBPort *port)
{
    m_ports.push_back(port);
}

const std::vector<IVDBNet *> &VDBNetlist::plainNets() const
{
    return m_nets;
}

void VDBNetlist::shrinkToFit()
{
    m_netBuses.shrink_to_fit();
    m_nets.shrink_to_fit();
    m_ports.shrink_to_fit();
}

} // namespace kvr::netlistdb
