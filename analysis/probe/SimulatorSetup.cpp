// What a simulator finds out about a netlist beforehand.

#include "analysis/probe/LogicOrder.h"
#include "analysis/probe/Simulator.h"

#include <algorithm>
#include <iterator>

namespace kvr::netlistdb::analysis::probe {

namespace {

/// What a reset makes of a bit: 0, 1, or 2 where that is not known.
std::uint8_t startOf(const Part &part, std::size_t bit)
{
    const char value = bit < part.reset.size() ? part.reset[bit] : 'x';
    return value == '0' ? 0 : value == '1' ? 1 : 2;
}

} // namespace

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
    m_later.resize(m_registers.size());
    m_order = logicOrderOf(graph);
    findClocks();
    findControl();
    compile({});
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
        ClockGroup &group = m_groups[groupOf[clock]];
        group.nodes.push_back(number);
        addClocked(number, part.has(PART_FALLING) ? group.falling : group.rising);
        if (part.op == Op::FlipFlop &&
            (m_graph.inputsOf(m_graph.nodes[number])[3] != SIGNAL_ZERO || part.has(PART_SETS_CLEARS))) {
            addAsynchronous(number);
        }
    }
}

void Simulator::addClocked(std::uint32_t node, Clocked &clocked) const
{
    const Step step = m_graph.stepOf(node);
    const Part &part = *step.part;
    clocked.isEmpty = false;
    if (part.op == Op::FlipFlop) {
        std::vector<FlipFlopBit> &bits = part.has(PART_ENABLE_FIRST) ? clocked.enableFirst : clocked.resetFirst;
        for (std::size_t bit = 0; bit < part.width; ++bit) {
            bits.push_back({step.out[bit], step.in[4 + bit], step.in[1], step.in[2], startOf(part, bit)});
        }
    } else if (part.op == Op::MemoryWrite) {
        clocked.writes.push_back(step);
    } else if (part.has(PART_WRITE_FIRST)) {
        clocked.writeFirst.push_back(step);
    } else {
        clocked.others.push_back(step);
    }
}

void Simulator::addAsynchronous(std::uint32_t node)
{
    const Step step = m_graph.stepOf(node);
    if (step.part->has(PART_SETS_CLEARS) || step.part->has(PART_LOADS)) {
        m_resetGroups.push_back({0, static_cast<std::uint32_t>(m_asynchronous.size()), 0, 0, UNKNOWN});
        m_asynchronous.push_back(step);
        return;
    }
    const auto first = static_cast<std::uint32_t>(m_asynchronousBits.size());
    for (std::size_t bit = 0; bit < step.part->width; ++bit) {
        m_asynchronousBits.push_back({step.out[bit], startOf(*step.part, bit)});
    }
    const auto end = static_cast<std::uint32_t>(m_asynchronousBits.size());
    if (!m_resetGroups.empty() && m_resetGroups.back().step == NONE && m_resetGroups.back().reset == step.in[3]) {
        m_resetGroups.back().end = end;
    } else {
        m_resetGroups.push_back({step.in[3], NONE, first, end, UNKNOWN});
    }
}

/// Parts the logic into that which registers, memories and @p alsoRead depend on and the rest.
void Simulator::compile(const std::vector<Signal> &alsoRead)
{
    std::vector<Signal> read = alsoRead;
    for (const Node &node : m_graph.nodes) {
        if (m_graph.partOf(node).isClocked()) {
            const Span<Signal> inputs = m_graph.inputsOf(node);
            read.insert(read.end(), inputs.begin(), inputs.end());
        }
    }
    const std::vector<std::uint32_t> states = coneOf(read);
    std::vector<bool> isIn(m_graph.nodes.size(), false);
    for (const std::uint32_t node : states) {
        isIn[node] = true;
    }
    std::vector<std::uint32_t> rest;
    std::copy_if(m_order.begin(), m_order.end(), std::back_inserter(rest),
                 [&](std::uint32_t node) { return !isIn[node]; });
    m_states = LogicProgram(m_graph, states, m_graph.external);
    m_rest = LogicProgram(m_graph, rest, m_graph.external);
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
    for (const ResetGroup &group : m_resetGroups) {
        if (group.step == NONE) {
            signals.push_back(group.reset);
        }
    }
    for (const Step &step : m_asynchronous) {
        signals.push_back(step.in[3]);
        if (step.part->has(PART_SETS_CLEARS)) {
            signals.insert(signals.end(), step.in.begin() + 4 + step.part->width, step.in.end());
        }
    }
    const std::vector<std::uint32_t> control = coneOf(signals);
    m_control = LogicProgram(m_graph, control, m_graph.external);
    m_isControl.assign(m_graph.signalCount, false);
    for (const Signal signal : signals) {
        m_isControl[signal] = true;
    }
    for (const std::uint32_t node : control) {
        for (const Signal input : m_graph.inputsOf(m_graph.nodes[node])) {
            m_isControl[input] = true;
        }
    }
}

} // namespace kvr::netlistdb::analysis::probe
