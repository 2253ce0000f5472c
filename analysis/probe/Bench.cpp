#include "analysis/probe/Bench.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>

namespace kvr::netlistdb::analysis::probe {

namespace {

constexpr int RESET_STEPS = 10;
constexpr std::size_t MOST_TRIED = 96; ///< inputs that are tried as resets

/// How many of @p signals are known in each run.
std::array<std::uint32_t, 64> countKnown(const Simulator &simulator, const std::vector<Signal> &signals)
{
    std::array<std::uint32_t, 64> counts{};
    for (const Signal signal : signals) {
        const std::uint64_t known = simulator[signal].known();
        for (std::size_t lane = 0; lane < 64; ++lane) {
            counts[lane] += static_cast<std::uint32_t>(known >> lane & 1);
        }
    }
    return counts;
}

} // namespace

Bench::Bench(const BitGraph &left, const BitGraph &right, const NamePairs &names) : elaborated(left), postMap(right)
{
    findInputs(left, right);
    findImports(left, right, names);
    findClocks(left, elaborated, &WirePair::elaborated);
    findClocks(right, postMap, &WirePair::postMap);
    findResets();
}

void Bench::findInputs(const BitGraph &left, const BitGraph &right)
{
    std::unordered_map<std::string, Signal> others;
    for (const TopPort &port : right.ports) {
        if (port.isInput) {
            others.emplace(port.name, port.signal);
        }
    }
    std::unordered_map<std::string, std::uint32_t> groups;
    const auto groupOf = [&](const std::string &name) {
        const std::string bus = name.substr(0, name.find('['));
        return groups.emplace(bus, static_cast<std::uint32_t>(groups.size())).first->second;
    };
    const auto add = [&](WirePair wires, const std::string &name) {
        if (wires.elaborated >= FIRST_SIGNAL) {
            m_inputs.emplace_back();
            m_inputs.back().wires = wires;
            m_inputs.back().isExternal = left.external[wires.elaborated];
            m_inputs.back().group = groupOf(name);
        }
    };
    for (const TopPort &port : left.ports) {
        if (port.isInput) {
            const auto other = others.find(port.name);
            add({port.signal, other != others.end() ? other->second : SIGNAL_UNKNOWN}, port.name);
        }
    }
    std::size_t number = 0;
    for (const WirePair &wires : pairOpaqueCells(left, right)) {
        add(wires, "output " + std::to_string(number++));
    }
    for (Input &input : m_inputs) {
        // Bits of a port lean to the same side in the same runs, so that numbers near 0 and near the end occur.
        Random own(input.group + 1);
        const std::uint64_t lean = own.next();
        const std::uint64_t side = own.next();
        input.seldomOne = lean & side;
        input.seldomZero = lean & ~side;
        input.seldomMoves = own.seldom(2);
    }
}

/// Outputs of a cell that only the post-map netlist has and that is not simulated: they are taken to be what has the
/// same name, so that what lies behind them can be compared.
void Bench::findImports(const BitGraph &left, const BitGraph &right, const NamePairs &names)
{
    std::vector<bool> isInput(right.signalCount, false);
    for (const Input &input : m_inputs) {
        isInput[input.wires.postMap] = true;
    }
    for (const WirePair &pair : names.wires) {
        if (right.drivers[pair.postMap] == NONE && !isInput[pair.postMap] && left.drivers[pair.elaborated] != NONE) {
            isInput[pair.postMap] = true;
            m_imports.push_back(pair);
        }
    }
    if (!m_imports.empty()) {
        std::vector<Signal> read;
        for (const WirePair &pair : m_imports) {
            read.push_back(pair.elaborated);
        }
        elaborated.alsoSettle(read);
    }
}

/// Inputs that are clocks as they are; where no such one reaches a clock pin, all that reach it.
void Bench::findClocks(const BitGraph &graph, const Simulator &simulator, Signal WirePair::*side)
{
    std::unordered_map<Signal, Input *> inputs;
    for (Input &input : m_inputs) {
        inputs.emplace(input.wires.*side, &input);
    }
    for (const Signal clock : simulator.clockSignals()) {
        const auto found = inputs.find(clock);
        if (found != inputs.end()) {
            found->second->isClock = true;
        }
    }
    for (const Signal clock : simulator.clockSignals()) {
        std::vector<Signal> open{clock};
        std::vector<Input *> reached;
        std::unordered_map<Signal, bool> seen;
        while (!open.empty()) {
            const Signal signal = open.back();
            open.pop_back();
            if (!seen.emplace(signal, true).second) {
                continue;
            }
            const auto found = inputs.find(signal);
            const std::uint32_t driver = graph.drivers[signal];
            if (found != inputs.end()) {
                reached.push_back(found->second);
            } else if (driver != NONE && graph.partOf(graph.nodes[driver]).isLogic()) {
                const Span<Signal> in = graph.inputsOf(graph.nodes[driver]);
                open.insert(open.end(), in.begin(), in.end());
            }
        }
        if (std::none_of(reached.begin(), reached.end(), [](const Input *input) { return input->isClock; })) {
            for (Input *input : reached) {
                input->isClock = true;
            }
        }
    }
}

/// An input is a reset when one of its values, held for some cycles, alone makes registers known that the other one
/// does not. Every run tries one input with one value.
void Bench::findResets()
{
    std::vector<Input *> tried;
    std::vector<std::uint32_t> bits;
    for (const Input &input : m_inputs) {
        bits.resize(std::max<std::size_t>(bits.size(), input.group + 1), 0);
        ++bits[input.group];
    }
    for (Input &input : m_inputs) {
        if (!input.isClock && !input.isExternal && bits[input.group] == 1 && tried.size() < MOST_TRIED) {
            tried.push_back(&input);
        }
    }
    constexpr std::size_t AT_ONCE = 31;
    for (std::size_t first = 0; first < tried.size(); first += AT_ONCE) {
        tryResets({tried.data() + first, tried.data() + std::min(tried.size(), first + AT_ONCE)});
    }
}

void Bench::tryResets(Span<Input *> tried)
{
    elaborated.restart();
    for (const Signal signal : elaborated.registers()) {
        elaborated.set(signal, UNKNOWN);
    }
    for (std::size_t at = 0; at < tried.size(); ++at) {
        const std::uint64_t low = std::uint64_t{1} << 2 * at;
        elaborated.set(tried[at]->wires.elaborated, inLanes(low, ZERO, inLanes(low << 1, ONE, UNKNOWN)));
    }
    Simulator::State before;
    for (int step = 0; step < RESET_STEPS; ++step) {
        for (const Lanes &value : {ZERO, ONE}) {
            for (const Input &input : m_inputs) {
                if (input.isClock) {
                    elaborated.set(input.wires.elaborated, value);
                }
            }
            elaborated.react();
            if (value == ZERO) {
                elaborated.settleStates();
            }
        }
        if (elaborated.saveTo(before)) {
            break;
        }
    }
    const std::array<std::uint32_t, 64> counts = countKnown(elaborated, elaborated.registers());
    for (std::size_t at = 0; at < tried.size(); ++at) {
        const std::uint32_t zero = counts[2 * at];
        const std::uint32_t one = counts[2 * at + 1];
        tried[at]->isReset = zero != one && std::max(zero, one) > counts[63];
        tried[at]->active = one > zero;
    }
}

void Bench::apply(const Input &input, const Lanes &value)
{
    if (input.isExternal) {
        elaborated.setExternal(input.wires.elaborated, value);
    } else {
        elaborated.set(input.wires.elaborated, value);
    }
    if (input.wires.postMap >= FIRST_SIGNAL) {
        if (input.isExternal) {
            postMap.setExternal(input.wires.postMap, value);
        } else {
            postMap.set(input.wires.postMap, value);
        }
    }
}

void Bench::applyInputs(bool isReset)
{
    for (Input &input : m_inputs) {
        if (input.isClock) {
            input.value = 0;
        } else if (input.isReset) {
            // Seldom again later on, in a few runs more often.
            const std::uint64_t acts = isReset ? ALL_LANES : m_random.seldom(7) | (m_random.seldom(4) & 0xFF);
            input.value = input.active ? acts : ~acts;
        } else {
            const std::uint64_t moves = ALL_LANES & ~(input.seldomMoves & ~m_random.seldom(3));
            const std::uint64_t even = m_random.next() & ~(input.seldomOne | input.seldomZero);
            const std::uint64_t next =
                even | (m_random.seldom(3) & input.seldomOne) | (~m_random.seldom(3) & input.seldomZero);
            input.value = (next & moves) | (input.value & ~moves);
        }
        apply(input, lanesOf(input.value));
    }
    elaborated.react();
    elaborated.settleStates();
    for (const WirePair &import : m_imports) {
        postMap.set(import.postMap, elaborated[import.elaborated]);
    }
    postMap.react();
    postMap.settleStates();
}

/// Clocks rise at random, each by itself, where there are several.
void Bench::moveClocks(bool high)
{
    std::size_t clocks = 0;
    for (const Input &input : m_inputs) {
        clocks += input.isClock ? 1 : 0;
    }
    for (const Input &input : m_inputs) {
        if (input.isClock) {
            const std::uint64_t pulse = clocks > 1 ? ~m_random.seldom(2) : ALL_LANES;
            const Lanes value = lanesOf(high ? pulse : 0);
            elaborated.setClock(input.wires.elaborated, value);
            if (input.wires.postMap >= FIRST_SIGNAL) {
                postMap.setClock(input.wires.postMap, value);
            }
        }
    }
    elaborated.react();
    postMap.react();
}

void Bench::start()
{
    elaborated.restart();
    postMap.restart();
    m_random = Random(1);
    for (int step = 0; step < RESET_STEPS; ++step) {
        applyInputs(true);
        elaborated.settle();
        postMap.settle();
        moveClocks(true);
        moveClocks(false);
    }
}

} // namespace kvr::netlistdb::analysis::probe
