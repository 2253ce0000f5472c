// What clock edges do.

#include "analysis/probe/LaneVector.h"
#include "analysis/probe/Numbers.h"
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
    m_laterCount = 0;
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
    std::for_each(m_later.begin(), m_later.begin() + static_cast<std::ptrdiff_t>(m_laterCount),
                  [this](const Later &later) { m_values[later.signal] = later.value; });
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
    m_later[m_laterCount++] = {signal, inLanes(edge, next, m_values[signal])};
}

template <bool ENABLE_FIRST> void Simulator::clockBits(const std::vector<FlipFlopBit> &bits, const Edge &edge)
{
    static constexpr LaneVector STARTS[] = {VECTOR_ZERO, VECTOR_ONE, VECTOR_UNKNOWN};
    Later *later = m_later.data() + m_laterCount;
    m_laterCount += bits.size();
    const Lanes *const values = m_values.data();
    for (std::size_t at = 0; at < bits.size(); ++at) {
        const FlipFlopBit &bit = bits[at];
        if (at + FETCHED_AHEAD < bits.size()) {
            __builtin_prefetch(values + bits[at + FETCHED_AHEAD].q);
            __builtin_prefetch(values + bits[at + FETCHED_AHEAD].d);
        }
        const Lanes &before = values[bit.q];
        const LaneVector q = vectorOf(before);
        const LaneVector d = vectorOf(values[bit.d]);
        const Choice enable(values[bit.enable]);
        const Choice reset(values[bit.reset]);
        const LaneVector start = STARTS[bit.start];
        Lanes next = lanesOf(ENABLE_FIRST ? enable.of(q, reset.of(d, start)) : reset.of(enable.of(q, d), start));
        if (edge.sure != ALL_LANES) {
            const Lanes either{before.zero | next.zero, before.one | next.one};
            next = inLanes(edge.sure, next, inLanes(edge.maybe, either, before));
        }
        *later++ = {bit.q, next};
    }
}

/// Runs in which the edge is not sure keep what they have.
void Simulator::clockNode(const Step &step, std::uint64_t edge)
{
    switch (step.part->op) {
    case Op::ShiftRegister:
        return shiftStages(step, edge);
    case Op::MultiplyAdd:
        return multiplyAdd(step, edge);
    default:
        return readClocked(step, edge);
    }
}

void Simulator::shiftStages(const Step &step, std::uint64_t edge)
{
    const Lanes enable = m_values[step.in[1]];
    Lanes *const stages = m_stages.data() + step.node->state;
    for (std::size_t at = step.part->width; at-- > 0;) {
        const Lanes next = choose(enable, stages[at], at > 0 ? stages[at - 1] : m_values[step.in[2]]);
        stages[at] = inLanes(edge, next, stages[at]);
    }
}

void Simulator::multiplyAdd(const Step &step, std::uint64_t edge)
{
    const Lanes enable = m_values[step.in[1]];
    const std::size_t width = step.part->width;
    const auto operand = [&](std::size_t number) {
        const Signal *const first = step.in.begin() + 2 + number * width;
        return Span<Signal>(first, first + width);
    };
    Numbers numbers[3];
    std::uint64_t known = numbersOf(m_values, operand(0), operand(1), numbers[0], numbers[1]);
    known &= numbersOf(m_values, operand(2), numbers[2]);
    for (std::size_t lane = 0; lane < 64; ++lane) {
        numbers[0][lane] = numbers[0][lane] * numbers[1][lane] + numbers[2][lane];
    }
    intoBits(numbers[0], step.out.size());
    for (std::size_t bit = 0; bit < step.out.size(); ++bit) {
        const Lanes result = inLanes(known, lanesOf(numbers[0][bit]), UNKNOWN);
        setLater(step.out[bit], choose(enable, m_values[step.out[bit]], result), edge);
    }
}

void Simulator::readClocked(const Step &step, std::uint64_t edge)
{
    const Signal *const address = step.in.begin() + 3;
    const Lanes enable = m_values[step.in[1]] & ~m_values[step.in[2]];
    readMemory(*step.node, {address, address + step.part->inputs}, step.out.size());
    for (std::size_t bit = 0; bit < step.out.size(); ++bit) {
        setLater(step.out[bit], choose(enable, m_values[step.out[bit]], m_read[bit]), edge);
    }
}

} // namespace kvr::netlistdb::analysis::probe
