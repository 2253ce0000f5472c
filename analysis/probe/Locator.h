#pragma once

#include "analysis/PointerIndex.h"
#include "analysis/probe/BitGraph.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb {
class IVDBInstance;
class IVDBNet;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::analysis::probe {

/// A net of an occurrence.
struct NetPlace {
    std::uint32_t occurrence;
    std::uint32_t net;
};

/// The ways between the items of the database and the wires of a BitGraph, which must outlive it.
class Locator {
  public:
    Locator(const BitGraph &graph, IVDBInstance *root);

    /// The wire that a net is on; SIGNAL_UNKNOWN for a net inside a cell.
    /// @throws std::invalid_argument when the net is none of that instance of the source.
    Signal find(const IVDBInstance *inst, const IVDBNet *net) const;
    /// All nets on a wire: declared ones first.
    Span<std::uint32_t> netsOn(Signal signal) const
    {
        return {m_nets.data() + m_firstNet[signal], m_nets.data() + m_firstNet[signal + 1]};
    }
    /// By net of netsOn(): the hash of its full name. Only where several are on the wire.
    const std::uint64_t *nameHashesOn(Signal signal) const { return m_nameHashes.data() + m_firstHash[signal]; }
    NetPlace placeOf(std::uint32_t net) const;
    /// Null when the tree of the database does not reach down to it.
    IVDBInstance *instanceItem(std::uint32_t occurrence) const { return m_instanceItems[occurrence]; }
    IVDBNet *netItem(const NetPlace &place) const
    {
        return m_graph.hierarchy.items[m_graph.moduleOf(place.occurrence).firstNet + place.net];
    }

  private:
    void orderNets();
    void findInstances();
    std::uint32_t occurrenceOf(const IVDBInstance *inst) const;

    const BitGraph &m_graph;
    IVDBInstance *m_root;
    PointerIndex m_itemIndex;                      ///< in the items of the hierarchy
    std::vector<const Verific::Instance *> m_subs; ///< of all modules, module by module
    std::vector<std::uint32_t> m_firstSub;
    PointerIndex m_subIndex;
    std::vector<std::uint32_t> m_firstNet; ///< by signal, in m_nets
    std::vector<std::uint32_t> m_nets;
    std::vector<std::uint32_t> m_firstHash; ///< by signal, in m_nameHashes
    std::vector<std::uint64_t> m_nameHashes;
    std::vector<IVDBInstance *> m_instanceItems; ///< by occurrence
};

} // namespace kvr::netlistdb::analysis::probe
