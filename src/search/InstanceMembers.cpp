#include "search/InstanceMembers.h"

#include "search/MemberOrder.h"

#include <netlistdb/IVDBNet.h>
#include <netlistdb/IVDBNetBus.h>
#include <netlistdb/IVDBNetlist.h>
#include <netlistdb/IVDBPort.h>
#include <netlistdb/VDBSearchParam.h>

namespace kvr::netlistdb {

void InstanceMembers::open(const IVDBNetlist *module, const VDBSearchParam &param)
{
    *this = InstanceMembers();
    if (module == nullptr) {
        return;
    }
    m_userNetsOnly = param.userNetsOnly;
    if ((param.itemTypes & ITEM_NET_BUS) != 0) {
        m_buses = &module->getAllNetBus();
    }
    if ((param.itemTypes & ITEM_NET) != 0) {
        m_nets = module->getNets(false);
    }
    if (param.sortItems && (param.nameOrder != SORT_NONE || param.widthOrder != SORT_NONE)) {
        sort(param);
    }
    if ((param.itemTypes & ITEM_PORT) != 0 && (module->isUserDeclared() || !param.userPortsOnly)) {
        m_ports = &module->getPorts();
    }
}

bool InstanceMembers::next(IVDBItem *&item)
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
    if (m_ports != nullptr && m_nextPort < m_ports->size()) {
        item = (*m_ports)[m_nextPort++];
        return true;
    }
    return false;
}

template <typename List> IVDBNetBase *InstanceMembers::nextWanted(const List &list, std::size_t &position) const
{
    while (position < list.size()) {
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
