#include "clock/HighestNet.h"

#include "netlist/verific_queries.h"

#include <netlistdb/IVDBInstance.h>

namespace kvr::netlistdb {

InstanceNet HighestNet::of(const InstanceNet &start)
{
    // Most nets climb through one port a level: a plain loop then.
    InstanceNet highest = start;
    InstanceNet net = start;
    for (;;) {
        const std::vector<InstanceNet> &next = above(net);
        if (next.empty()) {
            return highest;
        }
        if (next.size() > 1) {
            const Highest rest = climbFrom(net, false);
            return rest.levels != 0 ? rest.net : highest;
        }
        net = next.front();
        if (isInUserModule(net)) {
            highest = net;
        }
    }
}

InstanceNet HighestNet::ofOneOfMany(const InstanceNet &start)
{
    const Highest highest = climbFrom(start, true);
    return highest.levels != 0 ? highest.net : start;
}

const std::vector<InstanceNet> &HighestNet::above(const InstanceNet &net)
{
    m_above.clear();
    if (net.first != m_stop) {
        m_climb.above(net.first, m_items.find(net.second),
                      [this](const InstanceNet &upper) { m_above.push_back(upper); });
    }
    return m_above;
}

bool HighestNet::isInUserModule(const InstanceNet &net) const
{
    return verific_queries::mayDescend(*m_items.find(net.first->getModule()));
}

HighestNet::Highest HighestNet::climbFrom(const InstanceNet &start, bool remember)
{
    std::vector<Node> nodes(1);
    nodes.front().net = start;
    std::vector<std::size_t> edges;
    // All nets of one level are in one instance, so that a net met twice is met on one level.
    std::unordered_map<InstanceNet, std::size_t, InstanceNetHash> met{{start, 0}};
    for (std::size_t at = 0; at < nodes.size(); ++at) {
        const auto known = m_known.find(nodes[at].net);
        nodes[at].firstAbove = edges.size();
        if (known != m_known.end()) {
            nodes[at].highest = known->second;
            nodes[at].isKnown = true;
        } else {
            for (const InstanceNet &upper : above(nodes[at].net)) {
                const auto [place, isNew] = met.try_emplace(upper, nodes.size());
                edges.push_back(place->second);
                if (isNew) {
                    nodes.emplace_back().net = upper;
                }
            }
        }
        nodes[at].endAbove = edges.size();
    }
    // The nodes above a node come behind it in the list.
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) {
        if (!node->isKnown) {
            node->highest = highestAbove(*node, nodes, edges);
            if (remember) {
                m_known.emplace(node->net, node->highest);
            }
        }
    }
    return nodes.front().highest;
}

HighestNet::Highest HighestNet::highestAbove(const Node &node, const std::vector<Node> &nodes,
                                             const std::vector<std::size_t> &edges) const
{
    Highest highest;
    for (std::size_t edge = node.firstAbove; edge < node.endAbove; ++edge) {
        const Node &upper = nodes[edges[edge]];
        Highest candidate;
        if (upper.highest.levels != 0) {
            candidate = {upper.highest.levels + 1, upper.highest.net};
        } else if (isInUserModule(upper.net)) {
            candidate = {1, upper.net};
        }
        // Of equals the last: a breadth-first climb comes to it last.
        if (candidate.levels != 0 && candidate.levels >= highest.levels) {
            highest = candidate;
        }
    }
    return highest;
}

} // namespace kvr::netlistdb
