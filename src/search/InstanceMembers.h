#pragma once

#include "search/ModuleMemo.h"
#include "search/Prefetch.h"

#include <netlistdb/IVDBNetBase.h>

#include <cstddef>
#include <vector>

namespace kvr::netlistdb {

class IVDBPort;
class VDBSearchParam;

/// What a walk lists with one instance: the buses, the nets and then the ports of its module, as far as the search
/// record asks for them. No item is looked at before its turn, unless the record asks for an order.
class InstanceMembers {
  public:
    /// Starts on the members of @p module, leaving those of the module before.
    void open(ModuleFacts &module, const VDBSearchParam &param);
    /// Hands out the next member, false when there is none left. A port may be null.
    bool next(IVDBItem *&item, PlainPorts plainPorts)
    {
        while (m_nextNet < m_nets.size()) {
            prefetchAhead(m_nets, m_nextNet);
            IVDBNetBase *net = m_nets[m_nextNet++];
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

    bool m_userNetsOnly = false;
    bool m_portsArePlain = false;
    std::vector<IVDBNetBase *> m_nets; ///< the buses too
    std::size_t m_nextNet = 0;
    const std::vector<IVDBPort *> *m_ports = nullptr; ///< null when none is left
    std::size_t m_nextPort = 0;
};

} // namespace kvr::netlistdb
