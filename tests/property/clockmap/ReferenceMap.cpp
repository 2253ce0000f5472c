#include "tests/property/clockmap/ReferenceMap.h"

#include <DataBase.h>

#include <netlistdb/analysis/Clocks.h>

#include <algorithm>
#include <deque>

namespace clockmap_test {

namespace analysis = kvr::netlistdb::analysis;

ReferenceMap::Node ReferenceMap::wireOf(Node node) const
{
    while (m_wires[node] != node) {
        node = m_wires[node];
    }
    return node;
}

void ReferenceMap::findLoops()
{
    for (Node node = 0; node < m_names.size(); ++node) {
        for (const Edge &edge : m_before[node]) {
            m_after[edge.node].push_back(node);
        }
    }
    // From each net, back through wires as if each were one net, until it is met again.
    std::vector<std::set<Node>> before(m_names.size());
    for (Node node = 0; node < m_names.size(); ++node) {
        for (const Edge &edge : m_before[node]) {
            const bool isWire = edge.cells == 0 && (m_inoutAbove[node] == edge.node || m_inoutAbove[edge.node] == node);
            if (!isWire) {
                before[wireOf(node)].insert(wireOf(edge.node));
            }
        }
    }
    for (Node start = 0; start < m_names.size(); ++start) {
        std::set<Node> seen;
        std::vector<Node> pending{wireOf(start)};
        while (!pending.empty()) {
            const Node at = pending.back();
            pending.pop_back();
            for (const Node next : before[at]) {
                if (seen.insert(next).second) {
                    pending.push_back(next);
                }
            }
        }
        if (seen.count(wireOf(start)) != 0) {
            m_flags[start] |= analysis::REACHED_BY_LOOP;
        }
    }
}

bool ReferenceMap::passes(Node node, Pass &pass) const
{
    if (m_inoutAbove[node] != NOTHING) {
        pass = {m_inoutAbove[node], false};
        return m_inoutAbove[node] != node;
    }
    if (m_passes[node].size() != 1) {
        return false;
    }
    pass = m_passes[node][0];
    if (pass.from == NOTHING || pass.from == node) {
        return false;
    }
    const bool isDown = m_drivers[node][0].substr(0, 5) == "down ";
    return !isDown || !comesFromOpenPort(pass.from);
}

bool ReferenceMap::comesFromOpenPort(Node inner) const
{
    std::set<Node> seen;
    Pass pass{inner, false};
    Node node = inner;
    while (seen.insert(node).second && m_depth[node] >= m_depth[inner]) {
        if (!passes(node, pass)) {
            return isOpenPort(node) && m_depth[node] == m_depth[inner];
        }
        node = pass.from;
    }
    return false;
}

ReferenceMap::Root ReferenceMap::electrical(Node node) const
{
    // Round and round in a ring of buffers: it begins at its highest net, the first of these.
    std::vector<Node> way;
    Pass pass{node, false};
    bool inverted = false;
    std::map<Node, bool> seen;
    while (seen.count(node) == 0 && passes(node, pass)) {
        seen[node] = inverted;
        way.push_back(node);
        inverted = inverted != pass.inverted;
        node = pass.from;
    }
    if (seen.count(node) == 0) {
        return {node, inverted};
    }
    Node first = node;
    for (auto on = std::find(way.begin(), way.end(), node); on != way.end(); ++on) {
        if (m_depth[*on] < m_depth[first] || (m_depth[*on] == m_depth[first] && *on < first)) {
            first = *on;
        }
    }
    return {first, seen[first]};
}

std::string ReferenceMap::kindOf(Node node) const
{
    std::vector<std::string> drivers = m_drivers[node];
    if (std::find(drivers.begin(), drivers.end(), "port") != drivers.end()) {
        return "port";
    }
    if (drivers.size() != 1) {
        return drivers.empty() ? "undriven" : "logic";
    }
    if (drivers[0].substr(0, 5) == "down ") {
        return kindOf(static_cast<Node>(std::stoul(drivers[0].substr(5))));
    }
    return drivers[0] == "up" || drivers[0] == "open" ? "undriven" : drivers[0];
}

bool ReferenceMap::isOpenPort(Node root) const
{
    return m_inoutAbove[root] == root || (m_drivers[root].size() == 1 && m_drivers[root][0] == "open");
}

void ReferenceMap::findClocks()
{
    std::set<std::pair<Node, unsigned>> counted;
    for (std::size_t pin = 0; pin < m_clockPins.size(); ++pin) {
        const auto &[net, edges] = m_clockPins[pin];
        const Root root = electrical(net);
        if (isOpenPort(root.node)) {
            continue;
        }
        Clock &clock = m_clocks[m_names[root.node]];
        m_isClock[root.node] = m_names[root.node];
        const unsigned swapped = (edges & 1U) * 2 + (edges & 2U) / 2;
        clock.edges |= root.inverted ? swapped : edges;
        clock.root = kindOf(root.node);
        clock.registers += edges != 0 && counted.emplace(net, m_cellOfPin[pin]).second ? 1 : 0;
    }
}

ReferenceMap::Launch ReferenceMap::launch(Node start) const
{
    Launch launch;
    std::vector<unsigned> distance(m_names.size(), NOTHING);
    std::deque<Node> pending{start};
    distance[start] = 0;
    while (!pending.empty()) {
        const Node node = pending.front();
        pending.pop_front();
        for (const Edge &edge : m_before[node]) {
            if (distance[node] + edge.cells < distance[edge.node]) {
                distance[edge.node] = distance[node] + edge.cells;
                pending.push_back(edge.node);
            }
        }
    }
    const auto nearer = [](std::map<std::string, unsigned> &clocks, const std::string &clock, unsigned cells) {
        const auto found = clocks.emplace(clock, cells).first;
        found->second = std::min(found->second, cells);
    };
    for (Node node = 0; node < m_names.size(); ++node) {
        if (distance[node] == NOTHING) {
            continue;
        }
        launch.flags |= m_flags[node];
        for (const Node clock : m_launchedBy[node]) {
            const Node root = electrical(clock).node;
            if (isOpenPort(root)) {
                launch.flags |= analysis::REACHED_BY_UNDRIVEN;
            } else {
                nearer(launch.clocks, m_names[root], distance[node]);
            }
        }
        if (m_isClock.count(node) != 0) {
            nearer(launch.networks, m_names[node], distance[node]);
        }
    }
    return launch;
}

ReferenceMap::Capture ReferenceMap::capture(Node start) const
{
    Capture capture;
    std::set<Node> seen{start};
    std::vector<Node> pending{start};
    while (!pending.empty()) {
        const Node node = pending.back();
        pending.pop_back();
        capture.flags |= m_reached[node];
        for (const auto &[clock, role] : m_capturedBy[node]) {
            const Node root = electrical(clock).node;
            if (!isOpenPort(root)) {
                capture.clocks[m_names[root]] |= role;
            }
        }
        for (const Node next : m_after[node]) {
            if (seen.insert(next).second) {
                pending.push_back(next);
            }
        }
    }
    return capture;
}

bool ReferenceMap::isStep(Node after, Node before) const
{
    return std::any_of(m_before[after].begin(), m_before[after].end(),
                       [&](const Edge &edge) { return edge.node == before; });
}

} // namespace clockmap_test
