#include "tests/property/clockmap/ReferenceMap.h"

#include <DataBase.h>

#include <netlistdb/analysis/Clocks.h>

#include <algorithm>
#include <deque>

namespace clockmap_test {

namespace analysis = kvr::netlistdb::analysis;

namespace {

std::string pinName(const Verific::Port *port)
{
    std::string name = port->Name();
    name.erase(std::remove_if(name.begin(), name.end(), [](char c) { return c == '[' || c == ']'; }), name.end());
    return name;
}

} // namespace

ReferenceMap::ReferenceMap(const RandomDesign &design) : m_design(design)
{
    unfold(design.top(), "", {}, true);
    for (Node node = 0; node < m_names.size(); ++node) {
        m_byName[m_names[node]] = node;
        if (m_drivers[node].empty() && m_inoutAbove[node] == NOTHING) {
            m_flags[node] |= analysis::REACHED_BY_UNDRIVEN;
        }
    }
    findLoops();
    findClocks();
}

/// @p ports: the net outside on each port, in their order.
void ReferenceMap::unfold(const Verific::Netlist *netlist, const std::string &path, const std::vector<Node> &ports,
                          bool isTop)
{
    std::map<const Verific::Net *, Node> nets;
    Verific::MapIter iter;
    const Verific::Net *net = nullptr;
    const auto depth = static_cast<unsigned>(std::count(path.begin(), path.end(), '/')) + (path.empty() ? 0 : 1);
    FOREACH_NET_OF_NETLIST (netlist, iter, net) {
        nets[net] = static_cast<Node>(m_names.size());
        m_names.push_back(path + (path.empty() ? "" : "/") + net->Name());
        m_depth.push_back(depth);
    }
    m_before.resize(m_names.size());
    m_after.resize(m_names.size());
    m_flags.resize(m_names.size());
    m_reached.resize(m_names.size());
    m_launchedBy.resize(m_names.size());
    m_capturedBy.resize(m_names.size());
    m_passes.resize(m_names.size());
    m_drivers.resize(m_names.size());
    m_inoutAbove.resize(m_names.size(), NOTHING);
    while (m_wires.size() < m_names.size()) {
        m_wires.push_back(static_cast<Node>(m_wires.size()));
    }
    unsigned number = 0;
    const Verific::Port *port = nullptr;
    FOREACH_PORT_OF_NETLIST (netlist, iter, port) {
        const Node outer = isTop ? NOTHING : ports[number];
        ++number;
        const bool in = port->IsOutput() == 0;
        const bool out = port->IsOutput() != 0 || port->IsInout() != 0;
        if (port->GetNet() == nullptr) {
            if (out && outer != NOTHING) {
                m_flags[outer] |= analysis::REACHED_BY_UNDRIVEN;
                m_drivers[outer].push_back("undriven");
                m_passes[outer].push_back({NOTHING, false});
            }
            continue;
        }
        const Node inner = nets.at(port->GetNet());
        if (isTop) {
            m_flags[inner] |= in ? analysis::REACHED_BY_INPUT_PORT : 0U;
            m_reached[inner] |= out ? analysis::REACHES_OUTPUT_PORT : 0U;
            if (in) {
                m_drivers[inner].push_back("port");
                m_passes[inner].push_back({NOTHING, false});
            }
        } else if (in && out) {
            m_inoutAbove[inner] = inner; // the wire begins here when nothing is outside
            if (outer == NOTHING) {
                m_flags[inner] |= analysis::REACHED_BY_UNDRIVEN;
            } else {
                m_inoutAbove[inner] = outer;
                m_before[inner].push_back({outer, 0});
                m_before[outer].push_back({inner, 0});
                m_drivers[outer].push_back("down " + std::to_string(inner));
                m_passes[outer].push_back({NOTHING, false});
                m_wires[wireOf(inner)] = wireOf(outer);
            }
        } else if (in) {
            m_drivers[inner].push_back(outer == NOTHING ? "open" : "up");
            m_passes[inner].push_back({outer, false});
            if (outer == NOTHING) {
                m_flags[inner] |= analysis::REACHED_BY_UNDRIVEN;
            } else {
                m_before[inner].push_back({outer, 0});
            }
        } else if (outer != NOTHING) {
            m_drivers[outer].push_back("down " + std::to_string(inner));
            m_passes[outer].push_back({inner, false});
            m_before[outer].push_back({inner, 0});
        }
    }
    const Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (netlist, iter, instance) {
        if (m_design.isLeaf(instance)) {
            addLeaf(instance, nets);
            continue;
        }
        std::vector<Node> outside;
        Verific::MapIter pins;
        FOREACH_PORT_OF_NETLIST (instance->View(), pins, port) {
            const Verific::Net *on = instance->GetNet(port);
            outside.push_back(on != nullptr ? nets.at(on) : NOTHING);
        }
        unfold(instance->View(), path + (path.empty() ? "" : "/") + instance->Name(), outside, false);
    }
}

void ReferenceMap::addLeaf(const Verific::Instance *instance, const std::map<const Verific::Net *, Node> &nets)
{
    const CellFacts &facts = m_design.factsOf(instance);
    std::map<std::string, Node> on;
    Verific::MapIter iter;
    const Verific::Port *port = nullptr;
    std::set<std::string> outputs;
    FOREACH_PORT_OF_NETLIST (instance->View(), iter, port) {
        const Verific::Net *net = instance->GetNet(port);
        on[pinName(port)] = net != nullptr ? nets.at(net) : NOTHING;
        if (net != nullptr && (port->IsOutput() != 0 || port->IsInout() != 0)) {
            outputs.insert(pinName(port));
        }
    }
    for (const std::string &pin : outputs) {
        const Node node = on.at(pin);
        std::string kind = "undriven";
        for (const CellFacts::Edge &edge : facts.follows) {
            if (edge.to == pin) {
                kind = "logic";
                if (on.at(edge.from) == NOTHING) {
                    m_flags[node] |= analysis::REACHED_BY_UNDRIVEN;
                } else {
                    m_before[node].push_back({on.at(edge.from), 1});
                }
                m_flags[node] |= facts.isLatch ? analysis::REACHED_BY_LATCH : 0U;
            }
        }
        for (const CellFacts::Mark &end : facts.ends) {
            if (end.pin == pin) {
                kind = end.text;
                m_flags[node] |=
                    end.text == "constant" ? analysis::REACHED_BY_CONSTANT : analysis::REACHED_BY_BLACK_BOX;
                kind = end.text == "constant" && facts.ends.size() != 1 ? "logic" : kind;
                kind = end.text == "constant" && !facts.follows.empty() ? "logic" : kind;
            }
        }
        for (const CellFacts::Edge &launch : facts.launches) {
            if (launch.to == pin) {
                kind = "register";
                if (on.at(launch.from) == NOTHING) {
                    m_flags[node] |= analysis::REACHED_BY_UNDRIVEN;
                } else {
                    m_launchedBy[node].push_back(on.at(launch.from));
                }
            }
        }
        Pass pass{NOTHING, false};
        for (const CellFacts::Wire &wire : facts.wires) {
            if (wire.to == pin) {
                pass = {on.at(wire.from), wire.inverted};
            }
        }
        m_drivers[node].push_back(kind);
        m_passes[node].push_back(pass);
    }
    for (const CellFacts::Capture &capture : facts.captures) {
        if (on.at(capture.pin) != NOTHING && on.at(capture.clock) != NOTHING) {
            const unsigned role = capture.role == "data"     ? analysis::CAPTURE_DATA
                                  : capture.role == "enable" ? analysis::CAPTURE_ENABLE
                                                             : analysis::CAPTURE_SET_RESET;
            m_capturedBy[on.at(capture.pin)].emplace_back(on.at(capture.clock), role);
        }
    }
    for (const CellFacts::Edge &edge : facts.follows) {
        if (facts.isLatch && on.at(edge.from) != NOTHING) {
            m_reached[on.at(edge.from)] |= analysis::REACHES_LATCH;
        }
    }
    for (const std::string &pin : facts.boxPins) {
        if (on.at(pin) != NOTHING) {
            m_reached[on.at(pin)] |= analysis::REACHES_BLACK_BOX;
        }
    }
    ++m_cells;
    for (const CellFacts::Mark &clock : facts.clockPins) {
        if (on.at(clock.pin) != NOTHING) {
            m_reached[on.at(clock.pin)] |= analysis::REACHES_CLOCK_PIN;
            const std::map<std::string, unsigned> edges{{"rise", 1}, {"fall", 2}, {"both", 3}, {"reference", 0}};
            m_clockPins.emplace_back(on.at(clock.pin), edges.at(clock.text));
            m_cellOfPin.push_back(m_cells);
        }
    }
}

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
