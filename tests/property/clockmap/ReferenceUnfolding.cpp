// Unfolds the hierarchy of a design into the nets and edges of a ReferenceMap.

#include "tests/property/clockmap/ReferenceMap.h"

#include <DataBase.h>

#include <netlistdb/analysis/Clocks.h>

#include <algorithm>

namespace clockmap_test {

namespace analysis = kvr::netlistdb::analysis;

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

} // namespace clockmap_test
