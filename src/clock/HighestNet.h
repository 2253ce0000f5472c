#pragma once

#include "clock/Climb.h"
#include "clock/InstanceNetHash.h"

#include <netlistdb/InstanceNetSet.h>

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb {

/// Climbs nets through module ports to the highest net that feeds them: of the nets on the highest level that is a
/// module of the user's, the one that a breadth-first climb meets last.
///
/// What one net leads to depends on the nets that it climbs to alone, all of them one level higher, so that each net is
/// worked out once however many ways lead through it.
class HighestNet {
  public:
    /// Does not climb from @p stop, which may be null.
    HighestNet(const ItemLookup &items, const IVDBInstance *stop) : m_items(items), m_climb(items), m_stop(stop) {}

    /// The highest net that @p start leads to, or @p start itself.
    InstanceNet of(const InstanceNet &start);
    /// The same, and remembers every net on the way for the next call. During a pre-pass alone.
    InstanceNet ofOneOfMany(const InstanceNet &start);

  private:
    /// What a net leads to: a net so many levels higher, none at 0.
    struct Highest {
        std::size_t levels = 0;
        InstanceNet net;
    };
    /// A net of a climb, with the nets above it.
    struct Node {
        InstanceNet net;
        std::size_t firstAbove = 0; ///< in the list of edges
        std::size_t endAbove = 0;
        Highest highest;
        bool isKnown = false; ///< from an earlier climb
    };

    /// The nets directly above @p net, valid until the next call.
    const std::vector<InstanceNet> &above(const InstanceNet &net);
    bool isInUserModule(const InstanceNet &net) const;
    Highest climbFrom(const InstanceNet &start, bool remember);
    Highest highestAbove(const Node &node, const std::vector<Node> &nodes, const std::vector<std::size_t> &edges) const;

    const ItemLookup &m_items;
    Climb m_climb;
    const IVDBInstance *m_stop;
    std::vector<InstanceNet> m_above;
    std::unordered_map<InstanceNet, Highest, InstanceNetHash> m_known;
};

} // namespace kvr::netlistdb
