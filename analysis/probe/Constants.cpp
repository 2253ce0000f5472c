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
    std::vector<Step> flipFlops;
    for (std::uint32_t node = 0; node < graph.nodes.size(); ++node) {
        if (graph.partOf(graph.nodes[node]).op == Op::FlipFlop) {
            flipFlops.push_back(graph.stepOf(node));
        }
    }
    for (const Step &step : flipFlops) {
        for (std::size_t bit = 0; bit < step.out.size(); ++bit) {
            const Lanes start = startOf(*step.part, step.in, bit);
            const Lanes own = given.empty() ? UNKNOWN : given[step.out[bit]];
            values[step.out[bit]] = own == UNKNOWN ? start : start == UNKNOWN || start == own ? own : UNKNOWN;
        }
    }
    const auto settle = [&] {
        simulator.evaluateOnce(values, [&](const Step &step) {
            const Op op = step.part->op;
            if (op != Op::Latch && op != Op::MemoryRead && op != Op::ShiftOutput) {
                evaluate(*step.part, step.in, step.out, values);
            }
        });
    };
    bool changed = true;
    for (int pass = 0; changed; ++pass) {
        changed = false;
        settle();
        for (const Step &step : flipFlops) {
            const Part &part = *step.part;
            for (std::size_t bit = 0; bit < part.width; ++bit) {
                const Lanes q = values[step.out[bit]];
                if (q == UNKNOWN) {
                    continue;
                }
                const bool keeps = pass < MOST_PASSES && !part.has(PART_LOADS) && !part.has(PART_SETS_CLEARS) &&
                                   choose(values[step.in[1]], q, values[step.in[4 + bit]]) == q;
                if (!keeps) {
                    values[step.out[bit]] = UNKNOWN;
                    changed = true;
                }
            }
        }
    }
    // What registers without a first value take over is theirs, once they have been loaded.
    changed = true;
    for (int pass = 0; changed && pass < MOST_PASSES; ++pass) {
        changed = false;
        for (const Step &step : flipFlops) {
            const Part &part = *step.part;
            const Span<Signal> &in = step.in;
            const Span<Signal> &out = step.out;
            if (in[2] != SIGNAL_ZERO || in[3] != SIGNAL_ZERO || !part.start.empty() || part.has(PART_SETS_CLEARS)) {
                continue;
            }
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
