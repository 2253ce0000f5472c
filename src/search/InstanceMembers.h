#pragma once

#include <cstddef>
#include <vector>

namespace kvr::netlistdb {

class IVDBItem;
class IVDBNet;
class IVDBNetBase;
class IVDBNetBus;
class IVDBPort;
class VDBSearchParam;
struct KnownModule;

/// Whether a walk is to stop at the ports that cannot be anything else.
enum class PlainPorts { Visit, Skip };

/// What a walk lists with one instance: the buses, the nets and then the ports of its module, as far as the search
/// record asks for them. Nothing is looked at before its turn, unless the record asks for an order.
class InstanceMembers {
  public:
    /// Starts on the members of @p module, leaving those of the module before.
    void open(KnownModule &module, const VDBSearchParam &param);
    /// Hands out the next member, false when there is none left. A port may be null.
    bool next(IVDBItem *&item, PlainPorts plainPorts) { return m_hasMore && advance(item, plainPorts); }

  private:
    bool advance(IVDBItem *&item, PlainPorts plainPorts);
    template <typename List> IVDBNetBase *nextWanted(const List &list, std::size_t &position) const;
    void sort(const VDBSearchParam &param);

    bool m_hasMore = false; ///< false once the end was reached
    bool m_userNetsOnly = false;
    bool m_portsArePlain = false;
    const std::vector<IVDBNetBus *> *m_buses = nullptr;
    std::vector<IVDBNet *> m_nets;
    std::vector<IVDBNetBase *> m_sorted; ///< takes the place of m_buses and m_nets
    const std::vector<IVDBPort *> *m_ports = nullptr;
    std::size_t m_nextBus = 0;
    std::size_t m_nextNet = 0;
    std::size_t m_nextSorted = 0;
    std::size_t m_nextPort = 0;
};

} // namespace kvr::netlistdb
