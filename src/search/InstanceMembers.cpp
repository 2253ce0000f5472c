#include "search/InstanceMembers.h"

#include "search/MemberOrder.h"
#include "search/ModuleMemo.h"

#include <netlistdb/IVDBPort.h>
#include <netlistdb/VDBNetlist.h>
#include <netlistdb/VDBSearchParam.h>

#include <algorithm>
#include <typeinfo>

namespace kvr::netlistdb {

namespace {

bool isPlain(const IVDBPort *port)
{
    return port == nullptr || (port->getItemType() & (ITEM_INSTANCE | ITEM_NET | ITEM_NET_BUS)) == 0;
}

template <typename List> void append(const List &list, std::vector<IVDBNetBase *> &nets)
{
    nets.insert(nets.end(), list.begin(), list.end());
}

} // namespace

void InstanceMembers::open(ModuleFacts &module, const VDBSearchParam &param)
{
    if (module.ports == nullptr) {
        module.ports = &module.netlist->getPorts();
        module.portsArePlain = std::all_of(module.ports->begin(), module.ports->end(), isPlain);
        module.isOurs = typeid(*module.netlist) == typeid(VDBNetlist);
    }
    m_userNetsOnly = param.userNetsOnly;
    m_buses = {};
    m_nets = {};
    m_copies = {};
    module.listsOnlyPorts = module.listsOnlyPorts || !openNets(module, param);
    const bool wantsPorts = (param.itemTypes & ITEM_PORT) != 0 && (module.isUserDeclared || !param.userPortsOnly);
    m_ports = wantsPorts ? module.ports : nullptr;
    m_portsArePlain = module.portsArePlain;
    m_nextPort = 0;
}

bool InstanceMembers::openNets(const ModuleFacts &module, const VDBSearchParam &param)
{
    const bool wantsBuses = (param.itemTypes & ITEM_NET_BUS) != 0;
    const bool wantsNets = (param.itemTypes & ITEM_NET) != 0;
    const bool isOrdered = param.sortItems && (param.nameOrder != SORT_NONE || param.widthOrder != SORT_NONE);
    if (module.isOurs && !isOrdered) {
        const auto &netlist = static_cast<const VDBNetlist &>(*module.netlist);
        m_buses = wantsBuses ? NetRun(netlist.getAllNetBus()) : NetRun<IVDBNetBus>();
        m_nets = wantsNets ? NetRun(netlist.plainNets()) : NetRun<IVDBNet>();
        return !m_buses.isEmpty() || !m_nets.isEmpty();
    }
    m_copy.clear();
    if (wantsBuses) {
        append(module.netlist->getAllNetBus(), m_copy);
    }
    if (wantsNets) {
        append(module.netlist->getNets(false), m_copy);
    }
    const bool hasAny = !m_copy.empty();
    if (isOrdered) {
        m_copy.erase(std::remove_if(m_copy.begin(), m_copy.end(), [this](IVDBNetBase *net) { return !isWanted(net); }),
                     m_copy.end());
        orderMembers(m_copy, param.nameOrder, param.widthOrder);
    }
    m_copies = NetRun(m_copy);
    return hasAny;
}

bool InstanceMembers::nextPort(IVDBItem *&item, PlainPorts plainPorts)
{
    if ((m_portsArePlain && plainPorts == PlainPorts::Skip) || m_nextPort == m_ports->size()) {
        m_ports = nullptr;
        return false;
    }
    item = (*m_ports)[m_nextPort++];
    return true;
}

} // namespace kvr::netlistdb
