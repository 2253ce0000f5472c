#include "analysis/probe/Simulator.h"

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

bool Simulator::saveTo(State &state) const
{
    if (state.values == m_values && state.stages == m_stages && state.contents == m_contents &&
        state.clocks == m_clocks) {
        return true;
    }
    state.values = m_values;
    state.stages = m_stages;
    state.contents = m_contents;
    state.clocks = m_clocks;
    return false;
}

void Simulator::load(const State &state)
{
    m_values = state.values;
    m_stages = state.stages;
    m_contents = state.contents;
    m_clocks = state.clocks;
    unsettle();
}

void Simulator::run(const LogicProgram &program)
{
    program.run(m_values, [this](const Step &step) { run(step); });
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
        readMemory(node, {in.begin() + 3, in.end()}, out.size());
        for (std::size_t bit = 0; bit < out.size(); ++bit) {
            m_values[out[bit]] = m_read[bit];
        }
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

/// Resets that are what they were have done their work already, unless registers have been given other values.
bool Simulator::applyAsynchronous()
{
    static constexpr Lanes STARTS[] = {ZERO, ONE, UNKNOWN};
    static constexpr Lanes NO_RUN{0, 0}; // a value that no wire has
    bool changed = false;
    for (ResetGroup &group : m_resetGroups) {
        if (group.step != NONE) {
            changed = applyAsynchronous(m_asynchronous[group.step]) || changed;
            continue;
        }
        const Lanes before = m_values[group.reset];
        const bool isDone = m_areResetsApplied && before == group.applied;
        for (std::uint32_t at = isDone || before.one == 0 ? group.end : group.first; at < group.end; ++at) {
            const AsynchronousBit &bit = m_asynchronousBits[at];
            // Read again for each: a register may reset others.
            const Lanes q = choose(m_values[group.reset], m_values[bit.q], STARTS[bit.start]);
            changed = changed || q != m_values[bit.q];
            m_values[bit.q] = q;
        }
        group.applied = m_values[group.reset] == before ? before : NO_RUN;
    }
    m_areResetsApplied = true;
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
            unsettleLogic();
        }
        if (clockRegisters()) {
            unsettle();
        } else if (!wasReset) {
            return;
        }
    }
}

} // namespace kvr::netlistdb::analysis::probe
