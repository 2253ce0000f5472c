// What clock edges do.

#include "analysis/probe/Addresses.h"
#include "analysis/probe/LaneVector.h"
#include "analysis/probe/Logic.h"
#include "analysis/probe/Simulator.h"

#include <algorithm>

namespace kvr::netlistdb::analysis::probe {

/// Finds the clocks that have moved, and what they work on.
void Simulator::findEdges()
{
    m_edges.clear();
    for (std::uint32_t number = 0; number < m_groups.size(); ++number) {
        const ClockGroup &group = m_groups[number];
        const Lanes before = m_clocks[number];
        const Lanes after = m_values[group.clock];
        if (before == after) {
            continue;
        }
        m_clocks[number] = after;
        const auto add = [&](const Clocked &clocked, const Lanes &from, const Lanes &to) {
            const std::uint64_t sure = from.zero & ~from.one & to.one & ~to.zero;
            const std::uint64_t maybe = from.zero & to.one & ~sure;
            if (!clocked.isEmpty && (sure | maybe) != 0) {
                m_edges.push_back({number, &clocked, sure, maybe});
            }
        };
        add(group.rising, before, after);
        add(group.falling, ~before, ~after);
    }
}

bool Simulator::clockRegisters()
{
    findEdges();
    if (m_edges.empty()) {
        return false;
    }
    std::uint32_t last = NONE;
    for (const Edge &edge : m_edges) {
        if (edge.group != last && !m_areStatesSettled) {
            settleFor(edge.group);
        }
        last = edge.group;
    }
    m_later.clear();
    for (const Edge &edge : m_edges) {
        clockBits<false>(edge.clocked->resetFirst, edge);
        clockBits<true>(edge.clocked->enableFirst, edge);
        for (const Step &step : edge.clocked->others) {
            clockNode(step, edge.sure);
        }
    }
    for (const Edge &edge : m_edges) {
        for (const Step &step : edge.clocked->writes) {
            writeMemory(step, edge.sure);
        }
    }
    for (const Edge &edge : m_edges) {
        for (const Step &step : edge.clocked->writeFirst) {
            clockNode(step, edge.sure);
        }
    }
    for (const auto &[signal, value] : m_later) {
        m_values[signal] = value;
    }
    return true;
}

/// Brings the logic in front of the registers of a group to rest. A second edge within one step is that of a clock that
/// a register made, or of the other polarity: few registers, mostly.
void Simulator::settleFor(std::uint32_t number)
{
    ClockGroup &group = m_groups[number];
    if (!group.hasCone) {
        std::vector<Signal> signals;
        for (const std::uint32_t node : group.nodes) {
            const Span<Signal> inputs = m_graph.inputsOf(m_graph.nodes[node]);
            signals.insert(signals.end(), inputs.begin(), inputs.end());
        }
        group.cone = LogicProgram(m_graph, coneOf(signals), m_graph.external);
        group.hasCone = true;
    }
    run(group.cone);
}

void Simulator::setLater(Signal signal, const Lanes &next, std::uint64_t edge)
{
    m_later.emplace_back(signal, inLanes(edge, next, m_values[signal]));
}

template <bool ENABLE_FIRST> void Simulator::clockBits(const std::vector<FlipFlopBit> &bits, const Edge &edge)
{
    static constexpr LaneVector STARTS[] = {VECTOR_ZERO, VECTOR_ONE, VECTOR_UNKNOWN};
    for (const FlipFlopBit &bit : bits) {
        const Lanes &before = m_values[bit.q];
        const LaneVector q = vectorOf(before);
        const LaneVector d = vectorOf(m_values[bit.d]);
        const Choice enable(m_values[bit.enable]);
        const Choice reset(m_values[bit.reset]);
        const LaneVector start = STARTS[bit.start];
        const Lanes next = lanesOf(ENABLE_FIRST ? enable.of(q, reset.of(d, start)) : reset.of(enable.of(q, d), start));
        if (edge.sure == ALL_LANES) {
            m_later.emplace_back(bit.q, next);
            continue;
        }
        const Lanes either{before.zero | next.zero, before.one | next.one};
        m_later.emplace_back(bit.q, inLanes(edge.sure, next, inLanes(edge.maybe, either, before)));
    }
}

/// Runs in which the edge is not sure keep what they have.
void Simulator::clockNode(const Step &step, std::uint64_t edge)
{
    switch (step.part->op) {
    case Op::ShiftRegister:
        return shiftStages(*step.node, *step.part, edge);
    case Op::MultiplyAdd:
        return multiplyAdd(*step.node, *step.part, edge);
    default:
        return readClocked(*step.node, *step.part, edge);
    }
}

void Simulator::shiftStages(const Node &node, const Part &part, std::uint64_t edge)
{
    const Span<Signal> in = m_graph.inputsOf(node);
    const Lanes enable = m_values[in[1]];
    Lanes *const stages = m_stages.data() + node.state;
    for (std::size_t at = part.width; at-- > 0;) {
        const Lanes next = choose(enable, stages[at], at > 0 ? stages[at - 1] : m_values[in[2]]);
        stages[at] = inLanes(edge, next, stages[at]);
    }
}

void Simulator::multiplyAdd(const Node &node, const Part &part, std::uint64_t edge)
{
    const Span<Signal> in = m_graph.inputsOf(node);
    const Span<Signal> out = m_graph.outputsOf(node);
    const Lanes enable = m_values[in[1]];
    std::array<std::uint64_t, 64> numbers[3];
    std::uint64_t known = ALL_LANES;
    for (std::size_t operand = 0; operand < 3; ++operand) {
        const Signal *const first = in.begin() + 2 + operand * part.width;
        known &= numbersOf(m_values, {first, first + part.width}, numbers[operand]);
    }
    for (std::size_t lane = 0; lane < 64; ++lane) {
        numbers[0][lane] = numbers[0][lane] * numbers[1][lane] + numbers[2][lane];
    }
    std::vector<Lanes> before;
    for (const Signal output : out) {
        before.push_back(m_values[output]);
    }
    spread(numbers[0], known, out, m_values);
    for (std::size_t bit = 0; bit < out.size(); ++bit) {
        const Lanes next = choose(enable, before[bit], m_values[out[bit]]);
        m_values[out[bit]] = before[bit];
        setLater(out[bit], next, edge);
    }
}

void Simulator::readClocked(const Node &node, const Part &part, std::uint64_t edge)
{
    const Span<Signal> in = m_graph.inputsOf(node);
    const Span<Signal> out = m_graph.outputsOf(node);
    const Lanes enable = m_values[in[1]] & ~m_values[in[2]];
    std::vector<Lanes> before;
    for (const Signal output : out) {
        before.push_back(m_values[output]);
    }
    readMemory(node, {in.begin() + 3, in.begin() + 3 + part.inputs}, out);
    for (std::size_t bit = 0; bit < out.size(); ++bit) {
        const Lanes next = choose(enable, before[bit], m_values[out[bit]]);
        m_values[out[bit]] = before[bit];
        setLater(out[bit], next, edge);
    }
}

/// Runs in which it is not known whether or where is written keep what they have: both netlists are looked at the same
/// way, and contents that are not known would spread over the whole memory.
void Simulator::writeMemory(const Step &step, std::uint64_t edge)
{
    const Node &node = *step.node;
    const Part &part = *step.part;
    const Span<Signal> in = step.in;
    const Memory &memory = m_graph.memories[node.state];
    const Span<Signal> address(in.begin() + 1, in.begin() + 1 + part.inputs);
    const Signal *const data = address.end();
    const Signal *const enables = data + part.width;
    std::uint64_t written = 0;
    for (std::size_t bit = 0; bit < part.width; ++bit) {
        written |= m_values[enables[bit]].one & ~m_values[enables[bit]].zero;
    }
    Lanes *const contents = m_contents.data() + m_firstContent[node.state];
    forEachAddress(m_values, address, memory.words(), written & edge, [&](std::size_t place, std::uint64_t lanes) {
        Lanes *const word = contents + place * memory.width;
        for (std::size_t bit = 0; bit < part.width && bit < memory.width; ++bit) {
            const Lanes enable = m_values[enables[bit]];
            word[bit] = inLanes(lanes & enable.one & ~enable.zero, m_values[data[bit]], word[bit]);
        }
    });
}

} // namespace kvr::netlistdb::analysis::probe
