#include "search/InstanceMembers.h"

#include "search/KnownModules.h"
#include "search/MemberOrder.h"
#include "search/Prefetch.h"

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

} // namespace

void InstanceMembers::open(KnownModule &module, const VDBSearchParam &param)
{
    if (module.buses == nullptr) {
        module.buses = &module.netlist->getAllNetBus();
        module.ports = &module.netlist->getPorts();
        module.portsArePlain = std::all_of(module.ports->begin(), module.ports->end(), isPlain);
    }
    m_buses = (param.itemTypes & ITEM_NET_BUS) != 0 ? module.buses : nullptr;
    m_nets.clear();
    if ((param.itemTypes & ITEM_NET) != 0 && !module.listsOnlyPorts) {
        m_nets = module.netlist->getNets(false);
    }
    module.listsOnlyPorts = m_nets.empty() && (m_buses == nullptr || m_buses->empty());
    m_sorted.clear();
    const bool wantsPorts = (param.itemTypes & ITEM_PORT) != 0 && (module.isUserDeclared || !param.userPortsOnly);
    m_ports = wantsPorts ? module.ports : nullptr;
    m_portsArePlain = module.portsArePlain;
    m_nextBus = m_nextNet = m_nextSorted = m_nextPort = 0;
    m_userNetsOnly = param.userNetsOnly;
    m_hasMore = true;
    if (param.sortItems && (param.nameOrder != SORT_NONE || param.widthOrder != SORT_NONE)) {
        sort(param);
    }
}

bool InstanceMembers::advance(IVDBItem *&item, PlainPorts plainPorts)
{
    IVDBNetBase *member = nextWanted(m_sorted, m_nextSorted);
    if (member == nullptr && m_buses != nullptr) {
        member = nextWanted(*m_buses, m_nextBus);
    }
    if (member == nullptr) {
        member = nextWanted(m_nets, m_nextNet);
    }
    if (member != nullptr) {
        item = member;
        return true;
    }
    const bool visitsPorts = m_ports != nullptr && !(m_portsArePlain && plainPorts == PlainPorts::Skip);
    if (visitsPorts && m_nextPort < m_ports->size()) {
        item = (*m_ports)[m_nextPort++];
        return true;
    }
    m_hasMore = false;
    return false;
}

template <typename List> IVDBNetBase *InstanceMembers::nextWanted(const List &list, std::size_t &position) const
{
    while (position < list.size()) {
        prefetchAhead(list, position);
        IVDBNetBase *member = list[position++];
        if (member != nullptr && (!m_userNetsOnly || member->isUserDeclared())) {
            return member;
        }
    }
    return nullptr;
}

void InstanceMembers::sort(const VDBSearchParam &param)
{
    std::vector<IVDBNetBase *> members;
    members.reserve((m_buses != nullptr ? m_buses->size() : 0) + m_nets.size());
    const auto append = [&members, this](const auto &list) {
        std::size_t position = 0;
        while (IVDBNetBase *member = nextWanted(list, position)) {
            members.push_back(member);
        }
    };
    if (m_buses != nullptr) {
        append(*m_buses);
        m_buses = nullptr;
    }
    append(m_nets);
    m_nets.clear();
    orderMembers(members, param.nameOrder, param.widthOrder);
    m_sorted = std::move(members);
}

} // namespace kvr::netlistdb
