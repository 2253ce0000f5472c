#include "analysis/FanIn.h"

#include "analysis/Components.h"

#include <algorithm>

namespace kvr::netlistdb::analysis {

Contexts::Contexts(const DesignModel &design, const Context &start) : m_design(design)
{
    for (const Level &level : start) {
        const auto number = static_cast<std::uint32_t>(m_levels.size());
        if (number > 0) {
            m_below.emplace(std::uint64_t{number - 1} << 32 | level.sub, number);
        }
        m_levels.push_back({level, number > 0 ? number - 1 : NONE});
    }
    m_start = static_cast<std::uint32_t>(m_levels.size()) - 1;
}

std::uint32_t Contexts::below(std::uint32_t context, std::uint32_t sub)
{
    const auto [found, isNew] =
        m_below.try_emplace(std::uint64_t{context} << 32 | sub, static_cast<std::uint32_t>(m_levels.size()));
    if (isNew) {
        m_levels.push_back({m_design.below(m_levels[context].level, sub), context});
    }
    return found->second;
}

Context Contexts::path(std::uint32_t context) const
{
    Context path;
    for (; context != NONE; context = m_levels[context].above) {
        path.push_back(m_levels[context].level);
    }
    std::reverse(path.begin(), path.end());
    return path;
}

FanIn::FanIn(const DesignModel &design, const Place &start) : m_design(design), m_contexts(design, start.context)
{
    reach(NONE, m_contexts.start(), start.net, 0, {});
}

void FanIn::reach(std::uint32_t from, std::uint32_t context, std::uint32_t net, std::uint32_t cells, const Way &way)
{
    const std::uint32_t distance = from != NONE ? m_nodes[from].cells + cells : 0;
    const auto [found, isNew] =
        m_known.try_emplace(std::uint64_t{context} << 32 | net, static_cast<std::uint32_t>(m_nodes.size()));
    const std::uint32_t node = found->second;
    if (isNew) {
        m_nodes.push_back({context, net, distance, from, way});
        m_isDone.push_back(false);
    } else if (m_isDone[node] || m_nodes[node].cells <= distance) {
        if (from != NONE) {
            m_edges.push_back({from, node, way.kind == StepKind::Hierarchy && way.input == way.output});
        }
        return;
    } else {
        m_nodes[node].cells = distance;
        m_nodes[node].after = from;
        m_nodes[node].way = way;
    }
    if (from != NONE) {
        m_edges.push_back({from, node, way.kind == StepKind::Hierarchy && way.input == way.output});
    }
    // Ways through the hierarchy pass no cell.
    if (cells == 0) {
        m_pending.push_front(node);
    } else {
        m_pending.push_back(node);
    }
}

bool FanIn::step()
{
    while (!m_pending.empty()) {
        const std::uint32_t node = m_pending.front();
        m_pending.pop_front();
        if (!m_isDone[node]) {
            m_isDone[node] = true;
            visit(node);
            return true;
        }
    }
    return false;
}

void FanIn::endAt(std::uint32_t node, std::uint32_t flag, const Way &way)
{
    m_ends.push_back({node, NONE, false, NONE, flag, way});
}

void FanIn::visit(std::uint32_t node)
{
    const Node at = m_nodes[node];
    const Level level = m_contexts.level(at.context);
    const ModuleGraph &module = m_design.hierarchy.modules[level.module];
    const ModuleClocks &clocks = m_design.clocks[level.module];
    if (std::binary_search(clocks.roots.begin(), clocks.roots.end(), at.net)) {
        m_ends.push_back({node, level.firstClock + clocks.nets[at.net].number(), true, NONE, 0, {}});
    }
    const Span<NetSource> sources = module.sources[at.net];
    if (sources.empty()) {
        endAt(node, REACHED_BY_UNDRIVEN, {});
    }
    for (const NetSource source : sources) {
        if (source.isPort()) {
            visitPort(node, source.port());
            continue;
        }
        const CellPin pin = module.pinAt(source.position());
        if (module.isSub(pin.cell)) {
            visitInstance(node, pin);
        } else {
            visitCell(node, pin);
        }
    }
}

void FanIn::visitPort(std::uint32_t node, std::uint32_t port)
{
    const std::uint32_t context = m_nodes[node].context;
    const std::uint32_t above = m_contexts.above(context);
    const Level level = m_contexts.level(context);
    const bool isInout = m_design.hierarchy.modules[level.module].ports[port].isOutput;
    const Way way{StepKind::Hierarchy, NONE, port, isInout ? port : NONE};
    if (above == NONE) {
        endAt(node, REACHED_BY_INPUT_PORT, {StepKind::End, NONE, port, NONE});
        return;
    }
    const std::uint32_t net = m_design.netAbove(m_contexts.level(above), level, port);
    if (net == NONE) {
        endAt(node, REACHED_BY_UNDRIVEN, {StepKind::End, NONE, port, NONE});
    } else {
        reach(node, above, net, 0, way);
    }
}

void FanIn::visitInstance(std::uint32_t node, CellPin pin)
{
    const Node at = m_nodes[node];
    const ModuleGraph &module = m_design.hierarchy.modules[m_contexts.level(at.context).module];
    const std::uint32_t sub = module.subOf(pin.cell);
    const ModuleGraph::ModulePort &port = m_design.hierarchy.modules[module.subs[sub].module].ports[pin.pin];
    if (port.net == NONE) {
        endAt(node, REACHED_BY_UNDRIVEN, {StepKind::End, pin.cell, pin.pin, NONE});
        return;
    }
    reach(node, m_contexts.below(at.context, sub), port.net, 0,
          {StepKind::Hierarchy, pin.cell, pin.pin, port.isInput ? pin.pin : NONE});
}

void FanIn::endAtRegister(std::uint32_t node, CellPin pin, std::uint32_t clockNet, std::uint32_t clockPin)
{
    const Place place{m_contexts.path(m_nodes[node].context), clockNet};
    const std::uint32_t clock = clockNet != NONE ? electricalRoot(m_design, place).clock : NONE;
    if (clock != NONE) {
        m_ends.push_back({node, clock, false, clockNet, 0, {StepKind::Register, pin.cell, pin.pin, clockPin}});
    } else {
        endAt(node, REACHED_BY_UNDRIVEN, {StepKind::End, pin.cell, pin.pin, clockPin});
    }
}

void FanIn::visitCell(std::uint32_t node, CellPin pin)
{
    const Node at = m_nodes[node];
    const Level level = m_contexts.level(at.context);
    const ModuleGraph &module = m_design.hierarchy.modules[level.module];
    const CellModel &model = m_design.hierarchy.models[module.modelOf(pin.cell)];
    const Span<std::uint32_t> nets = module.netsOf(pin.cell);
    for (const std::uint32_t clock : model.launches[pin.pin]) {
        endAtRegister(node, pin, nets[model.clocks[clock].pin], model.clocks[clock].pin);
    }
    if (model.kind == CellKind::Memory && model.launches[pin.pin].empty()) {
        for (const ModuleGraph::WrittenBy &write : module.writesOf(pin.cell)) {
            endAtRegister(node, pin, write.clockNet, NONE);
        }
    }
    const std::uint32_t group = model.pins[pin.pin].group;
    const Way end{StepKind::End, pin.cell, pin.pin, NONE};
    if (group == NONE) {
        if (model.launches[pin.pin].empty()) {
            endAt(node,
                  model.isOpaque()                   ? REACHED_BY_BLACK_BOX
                  : model.kind == CellKind::Constant ? REACHED_BY_CONSTANT
                                                     : REACHED_BY_UNDRIVEN,
                  end);
        }
        return;
    }
    if (model.isTransparent()) {
        endAt(node, REACHED_BY_LATCH, end);
    }
    if (model.groups[group].empty()) {
        endAt(node, REACHED_BY_CONSTANT, end);
    }
    for (const std::uint32_t input : model.groups[group]) {
        if (nets[input] != NONE) {
            reach(node, at.context, nets[input], 1, {StepKind::Cell, pin.cell, pin.pin, input});
        } else {
            endAt(node, REACHED_BY_UNDRIVEN, {StepKind::End, pin.cell, pin.pin, input});
        }
    }
}

namespace {

/// The edges of a walk as a graph for Components.
struct WalkedGraph {
    std::vector<std::uint32_t> first;
    std::vector<std::uint32_t> to;
    std::uint32_t nodeCount() const { return static_cast<std::uint32_t>(first.size()) - 1; }
    std::uint32_t firstEdge(std::uint32_t node) const { return first[node]; }
    std::uint32_t endEdge(std::uint32_t node) const { return first[node + 1]; }
    std::uint32_t before(std::uint32_t edge) const { return to[edge]; }
};

} // namespace

std::uint32_t FanIn::nearestLoop()
{
    while (step()) {
    }
    // Nets that are one wire are one node: going out of an instance and in again is no loop.
    std::vector<std::uint32_t> wire(m_nodes.size());
    for (std::uint32_t node = 0; node < wire.size(); ++node) {
        wire[node] = node;
    }
    const auto wireOf = [&](std::uint32_t node) {
        while (wire[node] != node) {
            wire[node] = wire[wire[node]];
            node = wire[node];
        }
        return node;
    };
    for (const Edge &edge : m_edges) {
        if (edge.isWire) {
            wire[wireOf(edge.from)] = wireOf(edge.to);
        }
    }
    WalkedGraph graph;
    std::vector<std::vector<std::uint32_t>> next(m_nodes.size());
    std::vector<bool> isOnLoop(m_nodes.size());
    for (const Edge &edge : m_edges) {
        if (!edge.isWire) {
            const std::uint32_t from = wireOf(edge.from);
            next[from].push_back(wireOf(edge.to));
            isOnLoop[from] = isOnLoop[from] || next[from].back() == from;
        }
    }
    graph.first.push_back(0);
    for (const std::vector<std::uint32_t> &each : next) {
        graph.to.insert(graph.to.end(), each.begin(), each.end());
        graph.first.push_back(static_cast<std::uint32_t>(graph.to.size()));
    }
    const Components components(graph);
    for (std::uint32_t component = 0; component < components.count(); ++component) {
        if (components[component].size() > 1) {
            for (const std::uint32_t node : components[component]) {
                isOnLoop[node] = true;
            }
        }
    }
    std::uint32_t nearest = NONE;
    for (std::uint32_t node = 0; node < m_nodes.size(); ++node) {
        if (isOnLoop[wireOf(node)] && (nearest == NONE || m_nodes[node].cells < m_nodes[nearest].cells)) {
            nearest = node;
        }
    }
    return nearest;
}

} // namespace kvr::netlistdb::analysis
