#include "search/InstanceMembers.h"

#include "search/MemberOrder.h"
#include "search/ModuleMemo.h"

#include <netlistdb/IVDBNet.h>
#include <netlistdb/IVDBNetBus.h>
#include <netlistdb/IVDBNetlist.h>
#include <netlistdb/IVDBPort.h>
#include <netlistdb/VDBSearchParam.h>

#include <algorithm>

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
    }
    m_nets.clear();
    m_nextNet = 0;
    if ((param.itemTypes & ITEM_NET_BUS) != 0 && !module.listsOnlyPorts) {
        append(module.netlist->getAllNetBus(), m_nets);
    }
    if ((param.itemTypes & ITEM_NET) != 0 && !module.listsOnlyPorts) {
        append(module.netlist->getNets(false), m_nets);
    }
    module.listsOnlyPorts = m_nets.empty();
    m_userNetsOnly = param.userNetsOnly;
    if (param.sortItems && (param.nameOrder != SORT_NONE || param.widthOrder != SORT_NONE)) {
        m_nets.erase(std::remove_if(m_nets.begin(), m_nets.end(), [this](IVDBNetBase *net) { return !isWanted(net); }),
                     m_nets.end());
        orderMembers(m_nets, param.nameOrder, param.widthOrder);
    }
    const bool wantsPorts = (param.itemTypes & ITEM_PORT) != 0 && (module.isUserDeclared || !param.userPortsOnly);
    m_ports = wantsPorts ? module.ports : nullptr;
    m_portsArePlain = module.portsArePlain;
    m_nextPort = 0;
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
