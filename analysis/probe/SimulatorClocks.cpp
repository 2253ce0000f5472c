// What clock edges do.

#include "analysis/probe/Logic.h"
#include "analysis/probe/Simulator.h"

#include <algorithm>

namespace kvr::netlistdb::analysis::probe {

bool Simulator::clockRegisters()
{
    struct Edge {
        std::uint32_t group;
        Lanes before;
        Lanes after;
    };
    std::vector<Edge> edges;
    for (std::uint32_t group = 0; group < m_groups.size(); ++group) {
        const Lanes now = m_values[m_groups[group].clock];
        if (now != m_clocks[group]) {
            edges.push_back({group, m_clocks[group], now});
            m_clocks[group] = now;
        }
    }
    const auto eachNode = [&](auto visit) {
        for (const Edge &edge : edges) {
            for (const Step &step : m_groups[edge.group].steps) {
                const Part &part = *step.part;
                const bool falls = part.has(PART_FALLING);
                const Lanes from = falls ? ~edge.before : edge.before;
                const Lanes to = falls ? ~edge.after : edge.after;
                const std::uint64_t sure = from.zero & ~from.one & to.one & ~to.zero;
                const std::uint64_t maybe = from.zero & to.one & ~sure;
                if ((sure | maybe) != 0) {
                    visit(edge.group, step, sure, maybe);
                }
            }
        }
    };
    std::uint32_t last = NONE;
    bool any = false;
    eachNode([&](std::uint32_t group, const Step &, std::uint64_t, std::uint64_t) {
        any = true;
        if (group != last && !m_isSettled) {
            settleFor(group);
        }
        last = group;
    });
    if (!any) {
        return false;
    }
    m_later.clear();
    eachNode([&](std::uint32_t, const Step &step, std::uint64_t sure, std::uint64_t maybe) {
        if (step.part->op != Op::MemoryWrite && !step.part->has(PART_WRITE_FIRST)) {
            clockNode(step, sure, maybe);
        }
    });
    eachNode([&](std::uint32_t, const Step &step, std::uint64_t sure, std::uint64_t) {
        if (step.part->op == Op::MemoryWrite) {
            writeMemory(*step.node, sure);
        }
    });
    eachNode([&](std::uint32_t, const Step &step, std::uint64_t sure, std::uint64_t maybe) {
        if (step.part->has(PART_WRITE_FIRST)) {
            clockNode(step, sure, maybe);
        }
    });
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
        group.cone = stepsOf(coneOf(signals));
        group.hasCone = true;
    }
    for (const Step &step : group.cone) {
        run(step);
    }
}

void Simulator::setLater(Signal signal, const Lanes &next, std::uint64_t sure, std::uint64_t maybe)
{
    const Lanes before = m_values[signal];
    const Lanes either{before.zero | next.zero, before.one | next.one};
    m_later.emplace_back(signal, inLanes(sure, next, inLanes(maybe, either, before)));
}

void Simulator::clockNode(const Step &step, std::uint64_t sure, std::uint64_t maybe)
{
    const Node &node = *step.node;
    const Part &part = *step.part;
    if (part.op == Op::ShiftRegister) {
        shiftStages(node, part, sure);
        return;
    }
    if (part.op == Op::MultiplyAdd) {
        multiplyAdd(node, part, sure);
        return;
    }
    if (part.op == Op::ClockedRead) {
        readClocked(node, part, sure);
        return;
    }
    const Span<Signal> in = step.in;
    const Span<Signal> out = step.out;
    const Lanes enable = m_values[in[1]];
    const Lanes reset = m_values[in[2]];
    for (std::size_t bit = 0; bit < part.width; ++bit) {
        const Lanes q = m_values[out[bit]];
        const Lanes d = m_values[in[4 + bit]];
        const char value = bit < part.reset.size() ? part.reset[bit] : 'x';
        const Lanes start = value == '1' ? ONE : value == '0' ? ZERO : UNKNOWN;
        setLater(out[bit],
                 part.has(PART_ENABLE_FIRST) ? choose(enable, q, choose(reset, d, start))
                                             : choose(reset, choose(enable, q, d), start),
                 sure, maybe);
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
        setLater(out[bit], next, edge, 0);
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
        setLater(out[bit], next, edge, 0);
    }
}

/// Runs in which it is not known whether or where is written keep what they have: both netlists are looked at the same
/// way, and contents that are not known would spread over the whole memory.
void Simulator::writeMemory(const Node &node, std::uint64_t edge)
{
    const Part &part = m_graph.partOf(node);
    const Span<Signal> in = m_graph.inputsOf(node);
    const Memory &memory = m_graph.memories[node.state];
    std::array<std::uint64_t, 64> places;
    const std::uint64_t known = numbersOf(m_values, {in.begin() + 1, in.begin() + 1 + part.inputs}, places) & edge;
    const Signal *const data = in.begin() + 1 + part.inputs;
    const Signal *const enables = data + part.width;
    std::uint64_t written = 0;
    for (std::size_t bit = 0; bit < part.width; ++bit) {
        written |= m_values[enables[bit]].one & ~m_values[enables[bit]].zero;
    }
    written &= known;
    for (std::size_t lane = 0; lane < 64; ++lane) {
        const std::uint64_t mask = std::uint64_t{1} << lane;
        if ((written & mask) == 0 || places[lane] >= memory.words()) {
            continue;
        }
        Lanes *const word = m_contents.data() + m_firstContent[node.state] + places[lane] * memory.width;
        for (std::size_t bit = 0; bit < part.width && bit < memory.width; ++bit) {
            const Lanes enable = m_values[enables[bit]];
            if ((enable.one & ~enable.zero & mask) != 0) {
                word[bit] = inLanes(mask, m_values[data[bit]], word[bit]);
            }
        }
    }
}

} // namespace kvr::netlistdb::analysis::probe
