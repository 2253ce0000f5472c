#include "tests/property/crossings/ReferenceCrossings.h"

#include <DataBase.h>

#include <algorithm>
#include <deque>

namespace crossings_property_test {

using clockmap_test::CellFacts;

namespace {

std::string pinName(const Verific::Port *port)
{
    std::string name = port->Name();
    name.erase(std::remove_if(name.begin(), name.end(), [](char c) { return c == '[' || c == ']'; }), name.end());
    return name;
}

std::string below(const std::string &path, const char *name)
{
    return path + (path.empty() ? "" : "/") + name;
}

} // namespace

ReferenceCrossings::ReferenceCrossings(const RandomDesign &design, const ReferenceMap &clocks)
    : m_design(design), m_clocks(clocks)
{
    unfold(design.top(), "", {}, true);
    for (const Capture &capture : m_captures) {
        follow(capture);
    }
}

/// @p ports: the net outside on each port, in their order; empty for none.
void ReferenceCrossings::unfold(const Verific::Netlist *netlist, const std::string &path,
                                const std::vector<std::string> &ports, bool isTop)
{
    Verific::MapIter iter;
    const Verific::Port *port = nullptr;
    std::size_t number = 0;
    FOREACH_PORT_OF_NETLIST (netlist, iter, port) {
        const std::string outer = isTop ? std::string() : ports[number++];
        if (port->GetNet() == nullptr) {
            continue;
        }
        const std::string inner = below(path, port->GetNet()->Name());
        const bool in = port->IsOutput() == 0;
        const bool out = port->IsOutput() != 0 || port->IsInout() != 0;
        if (isTop && in) {
            m_sources[inner].push_back({"", ""});
        }
        if (!outer.empty() && in) {
            m_before[inner].push_back({outer, 0});
        }
        if (!outer.empty() && out) {
            m_before[outer].push_back({inner, 0});
        }
    }
    const Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (netlist, iter, instance) {
        if (m_design.isLeaf(instance)) {
            addLeaf(instance, path);
            continue;
        }
        std::vector<std::string> outside;
        Verific::MapIter pins;
        FOREACH_PORT_OF_NETLIST (instance->View(), pins, port) {
            const Verific::Net *net = instance->GetNet(port);
            outside.push_back(net != nullptr ? below(path, net->Name()) : std::string());
        }
        unfold(instance->View(), below(path, instance->Name()), outside, false);
    }
}

void ReferenceCrossings::addLeaf(const Verific::Instance *instance, const std::string &path)
{
    const CellFacts &facts = m_design.factsOf(instance);
    const std::string cell = below(path, instance->Name());
    std::map<std::string, std::string> on;
    Verific::MapIter iter;
    const Verific::Port *port = nullptr;
    FOREACH_PORT_OF_NETLIST (instance->View(), iter, port) {
        const Verific::Net *net = instance->GetNet(port);
        if (net != nullptr) {
            on[pinName(port)] = below(path, net->Name());
        }
    }
    for (const CellFacts::Edge &edge : facts.follows) {
        if (on.count(edge.to) != 0 && on.count(edge.from) != 0) {
            m_before[on[edge.to]].push_back({on[edge.from], 1});
        }
    }
    for (const CellFacts::Edge &launch : facts.launches) {
        if (on.count(launch.to) != 0 && on.count(launch.from) != 0) {
            m_sources[on[launch.to]].push_back({on[launch.from], cell});
        }
    }
    for (const CellFacts::Mark &end : facts.ends) {
        if (end.text == "black-box" && on.count(end.pin) != 0) {
            m_sources[on[end.pin]].push_back({"", cell});
        }
    }
    for (const CellFacts::Capture &capture : facts.captures) {
        if (on.count(capture.pin) != 0 && on.count(capture.clock) != 0) {
            m_captures.push_back({cell, capture.pin, on[capture.pin], on[capture.clock], capture.role == "reset"});
        }
    }
    if (facts.isLatch && facts.captures.empty()) {
        addLatch(facts, cell, on);
    }
}

/// A latch captures with every clock on another one of its inputs.
void ReferenceCrossings::addLatch(const CellFacts &facts, const std::string &cell,
                                  const std::map<std::string, std::string> &on)
{
    std::set<std::string> inputs;
    for (const CellFacts::Edge &edge : facts.follows) {
        if (on.count(edge.from) != 0) {
            inputs.insert(edge.from);
        }
    }
    for (const std::string &pin : inputs) {
        for (const std::string &gate : inputs) {
            if (gate != pin) {
                m_captures.push_back({cell, pin, on.at(pin), on.at(gate), false});
            }
        }
    }
}

std::string ReferenceCrossings::clockOf(const std::string &net) const
{
    const std::string root = m_clocks.names()[m_clocks.electrical(m_clocks.find(net)).node];
    return m_clocks.clocks().count(root) != 0 ? root : std::string();
}

void ReferenceCrossings::follow(const Capture &capture)
{
    const std::string clock = clockOf(capture.clockNet);
    if (clock.empty()) {
        return;
    }
    std::map<std::string, unsigned> distance{{capture.net, 0}};
    std::deque<std::string> pending{capture.net};
    while (!pending.empty()) {
        const std::string net = pending.front();
        pending.pop_front();
        for (const Edge &edge : m_before[net]) {
            const unsigned cells = distance[net] + edge.cells;
            const auto [found, isNew] = distance.emplace(edge.net, cells);
            if (isNew || cells < found->second) {
                found->second = cells;
                pending.push_back(edge.net);
            }
        }
    }
    struct Nearest {
        unsigned cells;
        std::set<std::string> names;
    };
    std::map<std::string, Nearest> nearest; // by launch clock
    for (const auto &[net, cells] : distance) {
        for (const Source &source : m_sources[net]) {
            const std::string launch = source.clockNet.empty() ? "none" : clockOf(source.clockNet);
            if (launch.empty() || launch == clock || (launch == "none" && !capture.isReset)) {
                continue;
            }
            Nearest &found = nearest.try_emplace(launch, Nearest{cells, {}}).first->second;
            if (cells < found.cells) {
                found = {cells, {}};
            }
            if (cells == found.cells) {
                found.names.insert({net, source.cell});
            }
        }
    }
    for (const auto &[launch, found] : nearest) {
        std::string key = launch;
        key += ">" + clock + " " + capture.cell + "." + capture.pin + " " + std::to_string(found.cells);
        m_all[key].insert(found.names.begin(), found.names.end());
    }
}

} // namespace crossings_property_test
