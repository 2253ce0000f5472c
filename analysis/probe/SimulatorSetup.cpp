// What a simulator finds out about a netlist beforehand.

#include "analysis/probe/LogicOrder.h"
#include "analysis/probe/Simulator.h"

#include <algorithm>
#include <iterator>

namespace kvr::netlistdb::analysis::probe {

Simulator::Simulator(const BitGraph &graph) : m_graph(graph)
{
    for (const Node &node : graph.nodes) {
        const Op op = graph.partOf(node).op;
        if (op == Op::FlipFlop || op == Op::ClockedRead || op == Op::MultiplyAdd || op == Op::Latch) {
            const Span<Signal> outputs = graph.outputsOf(node);
            m_registers.insert(m_registers.end(), outputs.begin(), outputs.end());
        }
    }
    std::size_t contents = 0;
    for (const Memory &memory : graph.memories) {
        m_firstContent.push_back(contents);
        contents += memory.words() * memory.width;
    }
    m_contents.resize(contents);
    for (Signal signal = 0; signal < graph.signalCount; ++signal) {
        if (graph.external[signal]) {
            m_externalOf.resize(graph.signalCount, NONE);
            m_externalOf[signal] = static_cast<std::uint32_t>(m_external.size());
            m_external.push_back(UNKNOWN);
        }
    }
    m_order = logicOrderOf(graph);
    m_steps = stepsOf(m_order);
    findClocks();
    findControl();
    restart();
}

void Simulator::findClocks()
{
    std::vector<std::uint32_t> groupOf(m_graph.signalCount, NONE);
    for (std::uint32_t number = 0; number < m_graph.nodes.size(); ++number) {
        const Part &part = m_graph.partOf(m_graph.nodes[number]);
        if (!part.isClocked()) {
            continue;
        }
        const Signal clock = m_graph.inputsOf(m_graph.nodes[number])[0];
        if (groupOf[clock] == NONE) {
            groupOf[clock] = static_cast<std::uint32_t>(m_groups.size());
            m_groups.emplace_back().clock = clock;
            m_clockSignals.push_back(clock);
        }
        m_groups[groupOf[clock]].nodes.push_back(number);
        m_groups[groupOf[clock]].steps.push_back(stepOf(number));
        if (part.op == Op::FlipFlop &&
            (m_graph.inputsOf(m_graph.nodes[number])[3] != SIGNAL_ZERO || part.has(PART_SETS_CLEARS))) {
            m_asynchronous.push_back(stepOf(number));
        }
    }
}

std::vector<std::uint32_t> Simulator::coneOf(const std::vector<Signal> &signals) const
{
    std::vector<bool> isIn(m_graph.nodes.size(), false);
    std::vector<Signal> open = signals;
    while (!open.empty()) {
        const std::uint32_t driver = m_graph.drivers[open.back()];
        open.pop_back();
        if (driver != NONE && !isIn[driver] && m_graph.partOf(m_graph.nodes[driver]).isLogic()) {
            isIn[driver] = true;
            const Span<Signal> inputs = m_graph.inputsOf(m_graph.nodes[driver]);
            open.insert(open.end(), inputs.begin(), inputs.end());
        }
    }
    std::vector<std::uint32_t> cone;
    std::copy_if(m_order.begin(), m_order.end(), std::back_inserter(cone),
                 [&](std::uint32_t node) { return isIn[node]; });
    return cone;
}

void Simulator::findControl()
{
    std::vector<Signal> signals = m_clockSignals;
    for (const Step &step : m_asynchronous) {
        const Part &part = *step.part;
        const Span<Signal> in = step.in;
        signals.push_back(in[3]);
        if (part.has(PART_SETS_CLEARS)) {
            signals.insert(signals.end(), in.begin() + 4 + part.width, in.end());
        }
    }
    const std::vector<std::uint32_t> control = coneOf(signals);
    m_control = stepsOf(control);
    m_isControl.assign(m_graph.signalCount, false);
    for (const Signal signal : signals) {
        m_isControl[signal] = true;
    }
    for (const Step &step : m_control) {
        for (const Signal input : step.in) {
            m_isControl[input] = true;
        }
    }
}

std::vector<Simulator::Step> Simulator::stepsOf(const std::vector<std::uint32_t> &nodes) const
{
    std::vector<Step> steps;
    steps.reserve(nodes.size());
    for (const std::uint32_t node : nodes) {
        steps.push_back(stepOf(node));
    }
    return steps;
}

} // namespace kvr::netlistdb::analysis::probe
