#include "analysis/probe/Simulator.h"

#include "analysis/probe/Addresses.h"
#include "analysis/probe/Logic.h"

#include <algorithm>

namespace kvr::netlistdb::analysis::probe {

namespace {

constexpr int MOST_REACTIONS = 12; ///< clocks made by registers of clocks made by registers, and so on

} // namespace

void Simulator::restart()
{
    m_values.assign(m_graph.signalCount, UNKNOWN);
    m_values[SIGNAL_ZERO] = ZERO;
    m_values[SIGNAL_ONE] = ONE;
    m_stages.assign(m_graph.stateWords, ZERO);
    for (const Signal signal : m_registers) {
        m_values[signal] = ZERO;
    }
    for (const Node &node : m_graph.nodes) {
        const Part &part = m_graph.partOf(node);
        const Span<Signal> outputs = m_graph.outputsOf(node);
        for (std::size_t bit = 0; bit < part.start.size() && bit < outputs.size(); ++bit) {
            if (part.start[bit] != 'x') {
                m_values[outputs[bit]] = part.start[bit] == '1' ? ONE : ZERO;
            }
        }
    }
    for (const auto &[signal, value] : m_graph.starts) {
        const std::uint32_t driver = m_graph.drivers[signal];
        if (driver != NONE && !m_graph.partOf(m_graph.nodes[driver]).isLogic()) {
            m_values[signal] = value ? ONE : ZERO;
        }
    }
    startMemories();
    run(m_states);
    run(m_rest);
    for (std::size_t group = 0; group < m_groups.size(); ++group) {
        m_clocks.resize(m_groups.size());
        m_clocks[group] = m_values[m_groups[group].clock];
    }
    unsettle();
}

void Simulator::load(const State &state)
{
    m_values = state.values;
    m_stages = state.stages;
    m_contents = state.contents;
    m_clocks = state.clocks;
    unsettle();
}

void Simulator::startMemories()
{
    std::fill(m_contents.begin(), m_contents.end(), ZERO);
    for (std::size_t number = 0; number < m_graph.memories.size(); ++number) {
        const std::string &start = m_graph.memories[number].shape->start;
        const std::size_t size = m_graph.memories[number].words() * m_graph.memories[number].width;
        for (std::size_t bit = 0; bit < start.size() && bit < size; ++bit) {
            m_contents[m_firstContent[number] + bit] = start[bit] == '1' ? ONE : ZERO;
        }
    }
    for (const Node &node : m_graph.nodes) {
        const Part &part = m_graph.partOf(node);
        if (part.op != Op::MemoryStart) {
            continue;
        }
        const Span<Signal> in = m_graph.inputsOf(node);
        std::array<std::uint64_t, 64> first;
        const Span<Signal> address(in.begin(), in.begin() + part.inputs);
        if (numbersOf(m_values, address, first) != ALL_LANES) {
            continue;
        }
        const Memory &memory = m_graph.memories[node.state];
        const std::size_t size = memory.words() * memory.width;
        for (std::size_t bit = 0; bit < part.width && first[0] * memory.width + bit < size; ++bit) {
            const Lanes value = m_values[in[part.inputs + bit]];
            m_contents[m_firstContent[node.state] + first[0] * memory.width + bit] = value == ONE ? ONE : ZERO;
        }
    }
}

void Simulator::run(const LogicProgram &program)
{
    program.run(m_values, [this](std::uint32_t node) { run(stepOf(node)); });
}

void Simulator::run(const Step &step)
{
    const Node &node = *step.node;
    const Part &part = *step.part;
    const Span<Signal> in = step.in;
    const Span<Signal> out = step.out;
    switch (part.op) {
    case Op::Latch:
        runLatch(part, in, out);
        break;
    case Op::MemoryRead:
        readMemory(node, {in.begin() + 3, in.end()}, out);
        break;
    case Op::ShiftOutput:
        m_values[out[0]] = stageOf(node, part, in);
        break;
    default:
        evaluate(part, in, out, m_values);
        break;
    }
    if (!m_externalOf.empty()) {
        for (const Signal output : out) {
            if (m_externalOf[output] != NONE) {
                const std::uint64_t driven = m_values[output].known();
                m_values[output] = inLanes(driven, m_values[output], m_external[m_externalOf[output]]);
            }
        }
    }
}

void Simulator::runLatch(const Part &part, Span<Signal> in, Span<Signal> out)
{
    const Lanes enable = m_values[in[0]];
    const Lanes reset = m_values[in[1]];
    for (std::size_t bit = 0; bit < part.width; ++bit) {
        Lanes q = choose(enable, m_values[out[bit]], m_values[in[2 + bit]]);
        q = choose(reset, q, bit < part.reset.size() && part.reset[bit] == '1' ? ONE : ZERO);
        if (part.has(PART_SETS_CLEARS)) {
            q = (q | m_values[in[2 + part.width + bit]]) & ~m_values[in[2 + 2 * part.width + bit]];
        }
        m_values[out[bit]] = q;
    }
}

Lanes Simulator::stageOf(const Node &node, const Part &part, Span<Signal> address) const
{
    Lanes level[32];
    std::size_t count = std::min<std::size_t>(part.width, 32);
    std::copy_n(m_stages.begin() + node.state, count, level);
    for (std::size_t bit = 0; bit < address.size(); ++bit) {
        const Lanes select = m_values[address[bit]];
        count /= 2;
        for (std::size_t at = 0; at < count; ++at) {
            level[at] = choose(select, level[2 * at], level[2 * at + 1]);
        }
    }
    return level[0];
}

void Simulator::readMemory(const Node &node, Span<Signal> address, Span<Signal> out)
{
    const Memory &memory = m_graph.memories[node.state];
    const std::size_t width = std::min<std::size_t>(out.size(), memory.width);
    const Lanes *const contents = m_contents.data() + m_firstContent[node.state];
    for (std::size_t bit = width; bit < out.size(); ++bit) {
        m_values[out[bit]] = UNKNOWN;
    }
    m_read.assign(width, UNKNOWN);
    forEachAddress(m_values, address, memory.words(), ALL_LANES, [&](std::size_t place, std::uint64_t lanes) {
        const Lanes *const word = contents + place * memory.width;
        for (std::size_t bit = 0; bit < width; ++bit) {
            m_read[bit].zero &= word[bit].zero | ~lanes;
            m_read[bit].one &= word[bit].one | ~lanes;
        }
    });
    for (std::size_t bit = 0; bit < width; ++bit) {
        m_values[out[bit]] = m_read[bit];
    }
}

void Simulator::settle()
{
    settleStates();
    if (!m_isRestSettled) {
        run(m_rest);
        m_isRestSettled = true;
    }
}

void Simulator::settleStates()
{
    if (!m_areStatesSettled) {
        run(m_states);
        m_areStatesSettled = true;
    }
}

bool Simulator::applyAsynchronous()
{
    static constexpr Lanes STARTS[] = {ZERO, ONE, UNKNOWN};
    bool changed = false;
    for (const AsynchronousBit &bit : m_asynchronousBits) {
        if (bit.step != NONE) {
            changed = applyAsynchronous(m_asynchronous[bit.step]) || changed;
            continue;
        }
        const Lanes reset = m_values[bit.reset];
        if (reset.one != 0) {
            const Lanes q = choose(reset, m_values[bit.q], STARTS[bit.start]);
            changed = changed || q != m_values[bit.q];
            m_values[bit.q] = q;
        }
    }
    return changed;
}

/// The same for a flip-flop that is set and cleared, or loaded.
bool Simulator::applyAsynchronous(const Step &step)
{
    const Part &part = *step.part;
    const Span<Signal> in = step.in;
    bool changed = false;
    for (std::size_t bit = 0; bit < part.width; ++bit) {
        Lanes q = m_values[step.out[bit]];
        if (part.has(PART_SETS_CLEARS)) {
            const Lanes set = m_values[in[4 + part.width + bit]];
            const Lanes clear = m_values[in[4 + 2 * part.width + bit]];
            q = (q | set) & ~clear;
        } else {
            q = choose(m_values[in[3]], q, m_values[in[4 + part.width + bit]]);
        }
        changed = changed || q != m_values[step.out[bit]];
        m_values[step.out[bit]] = q;
    }
    return changed;
}

void Simulator::react()
{
    for (int turn = 0; turn < MOST_REACTIONS; ++turn) {
        run(m_control);
        const bool wasReset = applyAsynchronous();
        if (wasReset) {
            unsettle();
        }
        if (!clockRegisters() && !wasReset) {
            return;
        }
        unsettle();
    }
}

} // namespace kvr::netlistdb::analysis::probe
