#include "analysis/probe/Constants.h"

#include "analysis/probe/Logic.h"

namespace kvr::netlistdb::analysis::probe {

namespace {

constexpr int MOST_PASSES = 64;

/// The value that a register begins with: of its own, or of its reset.
Lanes startOf(const Part &part, Span<Signal> inputs, std::size_t bit)
{
    const auto valueOf = [&](const std::string &bits) {
        return bit >= bits.size() || bits[bit] == 'x' ? UNKNOWN : bits[bit] == '1' ? ONE : ZERO;
    };
    const bool hasReset = inputs[2] != SIGNAL_ZERO || inputs[3] != SIGNAL_ZERO;
    const Lanes own = valueOf(part.start);
    const Lanes reset =
        hasReset && !part.has(PART_LOADS) && !part.has(PART_SETS_CLEARS) ? valueOf(part.reset) : UNKNOWN;
    return own == UNKNOWN ? reset : reset == UNKNOWN || reset == own ? own : UNKNOWN;
}

} // namespace

/// First, a register keeps its first value as long as what it takes over is that value, too: an assumption that is
/// withdrawn where it does not hold, until it holds everywhere.
std::vector<std::uint8_t> constantsOf(const BitGraph &graph, const Simulator &simulator)
{
    std::vector<Lanes> values(graph.signalCount, UNKNOWN);
    values[SIGNAL_ZERO] = ZERO;
    values[SIGNAL_ONE] = ONE;
    std::vector<Lanes> given(graph.starts.empty() ? 0 : graph.signalCount, UNKNOWN);
    for (const auto &[signal, value] : graph.starts) {
        given[signal] = value ? ONE : ZERO;
    }
    for (const Node &node : graph.nodes) {
        const Part &part = graph.partOf(node);
        if (part.op == Op::FlipFlop) {
            const Span<Signal> outputs = graph.outputsOf(node);
            for (std::size_t bit = 0; bit < outputs.size(); ++bit) {
                const Lanes start = startOf(part, graph.inputsOf(node), bit);
                const Lanes own = given.empty() ? UNKNOWN : given[outputs[bit]];
                values[outputs[bit]] = own == UNKNOWN ? start : start == UNKNOWN || start == own ? own : UNKNOWN;
            }
        }
    }
    const auto settle = [&] {
        for (const std::uint32_t number : simulator.order()) {
            const Node &node = graph.nodes[number];
            const Part &part = graph.partOf(node);
            if (part.op != Op::Latch && part.op != Op::MemoryRead && part.op != Op::ShiftOutput) {
                evaluate(part, graph.inputsOf(node), graph.outputsOf(node), values);
            }
        }
    };
    bool changed = true;
    for (int pass = 0; changed; ++pass) {
        changed = false;
        settle();
        for (const Node &node : graph.nodes) {
            const Part &part = graph.partOf(node);
            if (part.op != Op::FlipFlop) {
                continue;
            }
            const Span<Signal> in = graph.inputsOf(node);
            const Span<Signal> out = graph.outputsOf(node);
            for (std::size_t bit = 0; bit < part.width; ++bit) {
                const Lanes q = values[out[bit]];
                const bool keeps = pass < MOST_PASSES && !part.has(PART_LOADS) && !part.has(PART_SETS_CLEARS) &&
                                   choose(values[in[1]], q, values[in[4 + bit]]) == q;
                if (q != UNKNOWN && !keeps) {
                    values[out[bit]] = UNKNOWN;
                    changed = true;
                }
            }
        }
    }
    // What registers without a first value take over is theirs, once they have been loaded.
    changed = true;
    for (int pass = 0; changed && pass < MOST_PASSES; ++pass) {
        changed = false;
        for (const Node &node : graph.nodes) {
            const Part &part = graph.partOf(node);
            const Span<Signal> in = graph.inputsOf(node);
            if (part.op != Op::FlipFlop || in[2] != SIGNAL_ZERO || in[3] != SIGNAL_ZERO || !part.start.empty() ||
                part.has(PART_SETS_CLEARS)) {
                continue;
            }
            const Span<Signal> out = graph.outputsOf(node);
            for (std::size_t bit = 0; bit < part.width; ++bit) {
                const bool hasStart = !given.empty() && given[out[bit]] != UNKNOWN;
                if (!hasStart && values[out[bit]] == UNKNOWN && values[in[4 + bit]] != UNKNOWN) {
                    values[out[bit]] = values[in[4 + bit]];
                    changed = true;
                }
            }
        }
        settle();
    }
    std::vector<std::uint8_t> constants(graph.signalCount, 2);
    for (Signal signal = 0; signal < graph.signalCount; ++signal) {
        constants[signal] = values[signal] == ZERO ? 0 : values[signal] == ONE ? 1 : 2;
    }
    return constants;
}

} // namespace kvr::netlistdb::analysis::probe
