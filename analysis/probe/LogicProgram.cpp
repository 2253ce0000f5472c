#include "analysis/probe/LogicProgram.h"

#include "analysis/probe/LaneVector.h"

#include <algorithm>
#include <iterator>

namespace kvr::netlistdb::analysis::probe {

namespace {

/// Nodes that are sorted among each other: their values fit into the nearer caches.
constexpr std::size_t NODES_AT_ONCE = 4096;
constexpr std::uint32_t MOST_INPUTS = 6;

/// Whether @p part is a table, or a gate that can be one.
bool isTable(const Part &part, std::size_t inputs)
{
    const bool isGate = part.op == Op::And || part.op == Op::Or || part.op == Op::Xor;
    return (part.op == Op::Lut || isGate) && inputs >= 1 && inputs <= MOST_INPUTS;
}

std::uint64_t tableOf(const Part &part, std::size_t inputs)
{
    if (part.op == Op::Lut) {
        return part.table;
    }
    const std::uint64_t last = (std::uint64_t{1} << inputs) - 1;
    std::uint64_t table = 0;
    for (std::uint64_t row = 0; row <= last; ++row) {
        std::uint64_t odd = row ^ row >> 4;
        odd ^= odd >> 2;
        odd ^= odd >> 1;
        const bool value = part.op == Op::And ? row == last : part.op == Op::Or ? row != 0 : (odd & 1) != 0;
        table |= std::uint64_t{value != part.has(PART_NEGATED)} << row;
    }
    return table;
}

/// The tree of choices over the inputs behind the first OF_LEAVES ones: @p leaves are the functions of these, by their
/// table.
template <unsigned OF_LEAVES, unsigned LEVELS>
inline LaneVector chosen(const LaneVector *leaves, const Choice *choices, std::uint64_t table)
{
    if constexpr (LEVELS == 0) {
        return leaves[table & ((1U << (1U << OF_LEAVES)) - 1)];
    } else {
        return choices[LEVELS - 1].of(
            chosen<OF_LEAVES, LEVELS - 1>(leaves, choices, table),
            chosen<OF_LEAVES, LEVELS - 1>(leaves, choices, table >> (1U << (OF_LEAVES + LEVELS - 1))));
    }
}

template <unsigned INPUTS>
void lookUpEach(std::uint32_t count, const std::uint64_t *table, const Signal *pins, Lanes *values)
{
    for (const std::uint64_t *const end = table + count; table != end; ++table, pins += INPUTS + 1) {
        const LaneVector first = vectorOf(values[pins[1]]);
        const LaneVector ofFirst[4] = {VECTOR_ZERO, inverse(first), first, VECTOR_ONE};
        if constexpr (INPUTS == 1) {
            values[pins[0]] = lanesOf(ofFirst[*table & 3]);
        } else if constexpr (INPUTS == 2) {
            const Choice choices[] = {Choice(values[pins[2]])};
            values[pins[0]] = lanesOf(chosen<1, 1>(ofFirst, choices, *table));
        } else if constexpr (INPUTS == 3) {
            const Choice choices[] = {Choice(values[pins[2]]), Choice(values[pins[3]])};
            values[pins[0]] = lanesOf(chosen<1, 2>(ofFirst, choices, *table));
        } else if constexpr (INPUTS == 4) {
            const Choice choices[] = {Choice(values[pins[2]]), Choice(values[pins[3]]), Choice(values[pins[4]])};
            values[pins[0]] = lanesOf(chosen<1, 3>(ofFirst, choices, *table));
        } else {
            // With many leaves it pays to have all functions of two inputs at hand.
            const Choice second(values[pins[2]]);
            LaneVector ofBoth[16];
            for (unsigned function = 0; function < 16; ++function) {
                ofBoth[function] = second.of(ofFirst[function & 3], ofFirst[function >> 2]);
            }
            if constexpr (INPUTS == 5) {
                const Choice choices[] = {Choice(values[pins[3]]), Choice(values[pins[4]]), Choice(values[pins[5]])};
                values[pins[0]] = lanesOf(chosen<2, 3>(ofBoth, choices, *table));
            } else {
                const Choice choices[] = {Choice(values[pins[3]]), Choice(values[pins[4]]), Choice(values[pins[5]]),
                                          Choice(values[pins[6]])};
                values[pins[0]] = lanesOf(chosen<2, 4>(ofBoth, choices, *table));
            }
        }
    }
}

} // namespace

LogicProgram::LogicProgram(const BitGraph &graph, const std::vector<std::uint32_t> &order,
                           const std::vector<bool> &special)
{
    constexpr std::uint64_t KINDS = MOST_INPUTS + 1;
    const auto inputsOf = [&](const Node &node) -> std::uint32_t {
        const std::size_t inputs = graph.inputsOf(node).size();
        const bool isSpecial = !special.empty() && special[graph.outputsOf(node)[0]];
        return !isSpecial && isTable(graph.partOf(node), inputs) ? static_cast<std::uint32_t>(inputs) : OTHERS;
    };
    std::vector<std::uint64_t> levels(graph.nodes.size(), 0); ///< counted from 1 on among those sorted at once
    std::vector<std::pair<std::uint64_t, std::uint32_t>> keyed;
    std::vector<std::uint32_t> batch;
    for (std::size_t first = 0; first < order.size(); first += NODES_AT_ONCE) {
        const std::size_t last = std::min(order.size(), first + NODES_AT_ONCE);
        keyed.clear();
        for (std::size_t at = first; at < last; ++at) {
            const Node &node = graph.nodes[order[at]];
            std::uint64_t level = 0;
            for (const Signal input : graph.inputsOf(node)) {
                const std::uint32_t driver = graph.drivers[input];
                level = driver != NONE ? std::max(level, levels[driver]) : level;
            }
            levels[order[at]] = level + 1;
            keyed.emplace_back((level + 1) * KINDS + inputsOf(node), order[at]);
        }
        std::stable_sort(keyed.begin(), keyed.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
        for (std::size_t at = 0; at < keyed.size(); ++at) {
            batch.push_back(keyed[at].second);
            levels[keyed[at].second] = 0;
            if (at + 1 == keyed.size() || keyed[at + 1].first != keyed[at].first) {
                addBatch(graph, batch, static_cast<std::uint32_t>(keyed[at].first % KINDS));
                batch.clear();
            }
        }
    }
    m_tables.shrink_to_fit();
    m_pins.shrink_to_fit();
    m_others.shrink_to_fit();
}

void LogicProgram::addBatch(const BitGraph &graph, const std::vector<std::uint32_t> &nodes, std::uint32_t inputs)
{
    m_batches.push_back({inputs, static_cast<std::uint32_t>(nodes.size())});
    if (inputs == OTHERS) {
        std::transform(nodes.begin(), nodes.end(), std::back_inserter(m_others),
                       [&](std::uint32_t number) { return graph.stepOf(number); });
        return;
    }
    for (const std::uint32_t number : nodes) {
        const Node &node = graph.nodes[number];
        const Span<Signal> in = graph.inputsOf(node);
        m_tables.push_back(tableOf(graph.partOf(node), in.size()));
        m_pins.push_back(graph.outputsOf(node)[0]);
        m_pins.insert(m_pins.end(), in.begin(), in.end());
    }
}

void LogicProgram::lookUp(const Batch &batch, const std::uint64_t *table, const Signal *pins, Lanes *values)
{
    switch (batch.inputs) {
    case 1:
        return lookUpEach<1>(batch.count, table, pins, values);
    case 2:
        return lookUpEach<2>(batch.count, table, pins, values);
    case 3:
        return lookUpEach<3>(batch.count, table, pins, values);
    case 4:
        return lookUpEach<4>(batch.count, table, pins, values);
    case 5:
        return lookUpEach<5>(batch.count, table, pins, values);
    default:
        return lookUpEach<6>(batch.count, table, pins, values);
    }
}

} // namespace kvr::netlistdb::analysis::probe
