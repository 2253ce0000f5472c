#pragma once

#include "search/ModuleMemo.h"
#include "search/Prefetch.h"

#include <netlistdb/IVDBNet.h>
#include <netlistdb/IVDBNetBus.h>

#include <cstddef>
#include <vector>

namespace kvr::netlistdb {

class IVDBPort;
class VDBSearchParam;

/// The nets or buses that a list had at one moment, handed out one by one. The list must only ever be appended to.
template <typename Net> class NetRun {
  public:
    NetRun() = default;
    explicit NetRun(const std::vector<Net *> &list) : m_list(&list), m_count(list.size()) {}

    bool isEmpty() const { return m_count == 0; }
    bool next(IVDBNetBase *&net)
    {
        if (m_next == m_count) {
            return false;
        }
        prefetchAhead(*m_list, m_next);
        net = (*m_list)[m_next++];
        return true;
    }

  private:
    const std::vector<Net *> *m_list = nullptr;
    std::size_t m_count = 0;
    std::size_t m_next = 0;
};

/// What a walk lists with one instance: the buses, the nets and then the ports of its module, as far as the search
/// record asks for them. No item is looked at before its turn, unless the record asks for an order.
class InstanceMembers {
  public:
    /// Starts on the members of @p module, leaving those of the module before.
    void open(ModuleFacts &module, const VDBSearchParam &param);
    /// Hands out the next member, false when there is none left. A port may be null.
    bool next(IVDBItem *&item, PlainPorts plainPorts)
    {
        IVDBNetBase *net = nullptr;
        while (m_buses.next(net) || m_nets.next(net) || m_copies.next(net)) {
            if (isWanted(net)) {
                item = net;
                return true;
            }
        }
        return m_ports != nullptr && nextPort(item, plainPorts);
    }

  private:
    bool isWanted(const IVDBNetBase *net) const { return net != nullptr && (!m_userNetsOnly || net->isUserDeclared()); }
    bool nextPort(IVDBItem *&item, PlainPorts plainPorts);
    /// Starts on the nets and buses; false when the module has none of the kinds that are asked for.
    bool openNets(const ModuleFacts &module, const VDBSearchParam &param);

    bool m_userNetsOnly = false;
    bool m_portsArePlain = false;
    NetRun<IVDBNetBus> m_buses;
    NetRun<IVDBNet> m_nets;
    std::vector<IVDBNetBase *> m_copy; ///< buses and nets that are ordered, or of a caller's own class of netlist
    NetRun<IVDBNetBase> m_copies;
    const std::vector<IVDBPort *> *m_ports = nullptr; ///< null when none is left
    std::size_t m_nextPort = 0;
};

} // namespace kvr::netlistdb
