#include "analysis/SignalGraph.h"

#include "analysis/ModuleSets.h"

#include <map>
#include <utility>

namespace kvr::netlistdb::analysis {

SignalGraph::SignalGraph(const Hierarchy &hierarchy, std::uint32_t module, const std::vector<ModuleSets> &sets)
    : m_hierarchy(hierarchy), m_module(hierarchy.modules[module]), m_sets(sets), m_nets(m_module.netCount())
{
    addJunctions();
    m_first.reserve(m_nets + m_junctions.size() + 1);
    m_first.push_back(0);
    m_before.reserve(m_nets * std::size_t{4});
    m_cells.reserve(m_nets * std::size_t{4});
    for (std::uint32_t net = 0; net < m_nets; ++net) {
        addNetEdges(net);
        m_first.push_back(static_cast<std::uint32_t>(m_before.size()));
    }
    for (const Junction &junction : m_junctions) {
        addJunctionEdges(junction);
        m_first.push_back(static_cast<std::uint32_t>(m_before.size()));
    }
    m_junctionOfPin = {};
}

void SignalGraph::addJunctions()
{
    m_junctionOfPin.assign(m_module.pinCount(), NONE);
    std::vector<std::uint32_t> ofGroup;
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> ofSet;
    const auto add = [&](std::uint32_t cell, std::uint32_t group) {
        m_junctions.push_back({cell, group});
        return m_nets + static_cast<std::uint32_t>(m_junctions.size()) - 1;
    };
    for (std::uint32_t cell = 0; cell < m_module.cellCount(); ++cell) {
        const std::uint32_t firstPin = m_module.firstPinOf(cell);
        if (!m_module.isSub(cell)) {
            const CellModel &model = m_hierarchy.models[m_module.modelOf(cell)];
            ofGroup.assign(model.groupOutputs.size(), NONE);
            for (std::uint32_t pin = 0; pin < model.pins.size(); ++pin) {
                const std::uint32_t group = model.pins[pin].group;
                if (group == NONE || model.groupOutputs[group] < 2) {
                    continue;
                }
                if (ofGroup[group] == NONE) {
                    ofGroup[group] = add(cell, group);
                }
                m_junctionOfPin[firstPin + pin] = ofGroup[group];
            }
            continue;
        }
        // Outputs of an instance with the same set share a junction, but one that is an input too has its own: what
        // comes in through it does not come out again.
        const std::uint32_t inner = m_module.subs[m_module.subOf(cell)].module;
        const std::vector<ModuleGraph::ModulePort> &ports = m_hierarchy.modules[inner].ports;
        ofSet.clear();
        for (std::uint32_t port = 0; port < ports.size(); ++port) {
            if (!ports[port].isOutput || ports[port].net == NONE) {
                continue;
            }
            if (ports[port].isInput) {
                m_junctionOfPin[firstPin + port] = add(cell, port);
                continue;
            }
            const SetTable::Ref set = m_sets[inner].launch[ports[port].net];
            const auto [found, isNew] = ofSet.try_emplace({set.set, set.distance}, NONE);
            if (isNew) {
                found->second = add(cell, port);
            }
            m_junctionOfPin[firstPin + port] = found->second;
        }
    }
}

void SignalGraph::addEdge(std::uint32_t before, std::uint32_t cells)
{
    m_before.push_back(before);
    m_cells.push_back(cells);
}

void SignalGraph::addNetEdges(std::uint32_t net)
{
    for (const NetSource source : m_module.sources[net]) {
        if (source.isPort()) {
            continue;
        }
        if (m_junctionOfPin[source.position()] != NONE) {
            addEdge(m_junctionOfPin[source.position()], 0);
            continue;
        }
        const CellPin pin = m_module.pinAt(source.position());
        if (m_module.isSub(pin.cell)) {
            continue;
        }
        const CellModel &model = m_hierarchy.models[m_module.modelOf(pin.cell)];
        const std::uint32_t group = model.pins[pin.pin].group;
        if (group == NONE) {
            continue;
        }
        const Span<std::uint32_t> nets = m_module.netsOf(pin.cell);
        for (const std::uint32_t input : model.groups[group]) {
            if (nets[input] != NONE) {
                addEdge(nets[input], 1);
            }
        }
    }
}

void SignalGraph::addJunctionEdges(const Junction &junction)
{
    const Span<std::uint32_t> nets = m_module.netsOf(junction.cell);
    if (!m_module.isSub(junction.cell)) {
        for (const std::uint32_t input : m_hierarchy.models[m_module.modelOf(junction.cell)].groups[junction.group]) {
            if (nets[input] != NONE) {
                addEdge(nets[input], 1);
            }
        }
        return;
    }
    const std::uint32_t inner = m_module.subs[m_module.subOf(junction.cell)].module;
    const ModuleGraph::ModulePort &port = m_hierarchy.modules[inner].ports[junction.group];
    const SetTable::Ref set = m_sets[inner].launch[port.net];
    for (const SetTable::Entry &entry : m_sets[inner].launchTable[set.set]) {
        const bool comesBack = port.isInput && entry.atom.number() == junction.group;
        if (entry.atom.kind() == Atom::InputPort && !comesBack && nets[entry.atom.number()] != NONE) {
            addEdge(nets[entry.atom.number()], set.distance + entry.distance);
        }
    }
}

} // namespace kvr::netlistdb::analysis
