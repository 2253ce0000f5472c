#include "analysis/crossings/Cones.h"

#include "analysis/crossings/Wires.h"

#include <deque>

namespace kvr::netlistdb::analysis {

Cones::Cones(Unfolding &design, std::uint32_t launch, const std::vector<Node> &ends)
    : m_design(design), m_launch(launch)
{
    collect(ends);
    sortEdges();
    measure();
    spread();
}

bool Cones::isReached(Node node)
{
    const std::uint32_t set = m_design.launchOf(node);
    if (m_launch == UNCLOCKED) {
        return (m_design.sets().flags(set) & (REACHED_BY_INPUT_PORT | REACHED_BY_BLACK_BOX)) != 0;
    }
    return m_design.sets().contains(set, m_launch);
}

std::uint32_t Cones::add(Node node)
{
    const auto [found, isNew] = m_steps.try_emplace(node, stepCount());
    if (isNew) {
        m_nodes.push_back(node);
        m_contexts.push_back(m_design.contextOf(node));
    }
    return found->second;
}

std::uint32_t Cones::addJunction(const PinPlace &output, std::uint32_t group)
{
    const auto [found, isNew] = m_junctions.try_emplace({output.context, output.cell, group}, stepCount());
    if (isNew) {
        m_nodes.push_back(NONE);
        m_contexts.push_back(output.context);
        addInputs(found->second, output, group, NONE);
    }
    return found->second;
}

void Cones::collect(const std::vector<Node> &ends)
{
    for (const Node end : ends) {
        add(end);
    }
    for (std::uint32_t step = 0; step < stepCount(); ++step) {
        if (m_nodes[step] != NONE) {
            visit(step);
        }
    }
}

void Cones::visit(std::uint32_t step)
{
    const Node node = m_nodes[step];
    m_design.forEachSource(
        node, [&](const PinPlace &pin) { visitOutput(step, pin); },
        [&](Node before) {
            if (isReached(before)) {
                m_edges.push_back({add(before), step, NONE, NONE, NONE});
            }
        },
        [&](std::uint32_t port) {
            if (m_launch == UNCLOCKED) {
                m_sources.push_back({node, {Unfolding::TOP, NONE, port}, step});
            }
        });
}

bool Cones::isLaunched(const PinPlace &pin) const
{
    const CellModel &model = m_design.model(pin);
    if (m_launch == UNCLOCKED) {
        return model.isOpaque();
    }
    for (const std::uint32_t clock : model.launches[pin.pin]) {
        if (m_design.clockAt({pin.context, pin.cell, model.clocks[clock].pin}) == m_launch) {
            return true;
        }
    }
    for (const ModuleGraph::WrittenBy &write : m_design.graphOf(pin.context).writesOf(pin.cell)) {
        if (m_design.clockOf(m_design.node(pin.context, write.clockNet)) == m_launch) {
            return true;
        }
    }
    return false;
}

void Cones::visitOutput(std::uint32_t step, const PinPlace &pin)
{
    const CellModel &model = m_design.model(pin);
    if (isLaunched(pin)) {
        m_sources.push_back({m_nodes[step], pin, step});
    }
    const std::uint32_t group = model.pins[pin.pin].group;
    if (group == NONE) {
        return;
    }
    if (model.groupOutputs[group] > 1) {
        m_edges.push_back({addJunction(pin, group), step, NONE, NONE, NONE});
    } else {
        addInputs(step, pin, group, pin.pin);
    }
}

void Cones::addInputs(std::uint32_t step, const PinPlace &output, std::uint32_t group, std::uint32_t shownOutput)
{
    for (const std::uint32_t input : m_design.model(output).groups[group]) {
        const Node before = m_design.nodeAt({output.context, output.cell, input});
        if (before != NONE && isReached(before)) {
            m_edges.push_back({add(before), step, output.cell, input, shownOutput});
        }
    }
}

void Cones::sortEdges()
{
    m_first.assign(stepCount() + std::size_t{1}, 0);
    for (const Edge &edge : m_edges) {
        ++m_first[edge.from + 1];
    }
    for (std::size_t step = 0; step < stepCount(); ++step) {
        m_first[step + 1] += m_first[step];
    }
    std::vector<std::uint32_t> next(m_first.begin(), m_first.end() - 1);
    std::vector<Edge> sorted(m_edges.size());
    for (const Edge &edge : m_edges) {
        sorted[next[edge.from]++] = edge;
    }
    m_edges.swap(sorted);
}

/// Nearest sources first; of two at the same distance the one that was met first.
void Cones::measure()
{
    m_reach.resize(stepCount());
    std::vector<bool> isDone(stepCount());
    std::deque<std::uint32_t> pending;
    for (std::uint32_t source = 0; source < m_sources.size(); ++source) {
        Reach &reach = m_reach[m_sources[source].step];
        if (reach.source == NONE) {
            reach.source = source;
            pending.push_back(m_sources[source].step);
        }
    }
    while (!pending.empty()) {
        const std::uint32_t step = pending.front();
        pending.pop_front();
        if (isDone[step]) {
            continue;
        }
        isDone[step] = true;
        for (std::uint32_t at = m_first[step]; at < m_first[step + 1]; ++at) {
            const Edge &edge = m_edges[at];
            const bool isWire = edge.cell == NONE;
            const std::uint32_t cells = m_reach[step].cells + (isWire ? 0 : 1);
            Reach &to = m_reach[edge.to];
            if (isDone[edge.to] || (to.source != NONE && to.cells <= cells)) {
                continue;
            }
            to.source = m_reach[step].source;
            to.cells = cells;
            if (isWire) {
                pending.push_front(edge.to);
            } else {
                pending.push_back(edge.to);
            }
        }
    }
}

/// Whether several sources, or logic, lie behind a step: each changes at most once.
void Cones::spread()
{
    std::vector<std::uint32_t> pending;
    std::vector<std::uint32_t> only(stepCount(), NONE);
    for (const Source &source : m_sources) {
        const auto number = static_cast<std::uint32_t>(&source - m_sources.data());
        if (only[source.step] == NONE) {
            only[source.step] = number;
        } else {
            m_reach[source.step].hasSeveral = true;
        }
        pending.push_back(source.step);
    }
    while (!pending.empty()) {
        const std::uint32_t step = pending.back();
        pending.pop_back();
        for (std::uint32_t at = m_first[step]; at < m_first[step + 1]; ++at) {
            const Edge &edge = m_edges[at];
            Reach &to = m_reach[edge.to];
            const bool isLogic =
                edge.cell != NONE && !isOnlyPassed(m_design.model(m_contexts[edge.to], edge.cell), edge.input);
            const bool logic = to.hasLogic || m_reach[step].hasLogic || isLogic;
            const bool several =
                to.hasSeveral || m_reach[step].hasSeveral || (only[edge.to] != NONE && only[edge.to] != only[step]);
            const bool isNew = only[edge.to] == NONE;
            if (isNew) {
                only[edge.to] = only[step];
            }
            if (isNew || logic != to.hasLogic || several != to.hasSeveral) {
                to.hasLogic = logic;
                to.hasSeveral = several;
                pending.push_back(edge.to);
            }
        }
    }
}

} // namespace kvr::netlistdb::analysis
