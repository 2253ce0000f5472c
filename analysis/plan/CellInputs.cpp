#include "analysis/plan/CellInputs.h"

#include <algorithm>

namespace kvr::netlistdb::analysis::plan {

using namespace probe;

namespace {

char bitAt(const std::string &bits, std::size_t index)
{
    return index < bits.size() ? bits[index] : 'x';
}

/// Inputs from @p first on, one of each word of @p width.
void addEachWord(Span<Signal> inputs, std::size_t first, std::size_t end, std::size_t width, std::vector<Signal> &all)
{
    for (std::size_t at = first; at < end; at += width) {
        all.push_back(inputs[at]);
    }
}

} // namespace

std::size_t outputOf(const BitGraph &graph, const Node &node, Signal signal)
{
    const Span<Signal> outputs = graph.outputsOf(node);
    return static_cast<std::size_t>(std::find(outputs.begin(), outputs.end(), signal) - outputs.begin());
}

bool isInverter(const Part &part)
{
    const bool isNegatedGate =
        (part.op == Op::And || part.op == Op::Or || part.op == Op::Xor) && part.has(PART_NEGATED);
    return part.slots.size() == 2 && (isNegatedGate || (part.op == Op::Lut && part.table == 1));
}

void takeMaking(const BitGraph &graph, const Node &node, std::size_t index, bool withNames, OutputMaking &making)
{
    const Part &part = graph.partOf(node);
    const Span<Signal> inputs = graph.inputsOf(node);
    const std::size_t width = std::max<std::size_t>(part.width, 1);
    making.inputs.clear();
    making.isState = isState(part);
    std::uint64_t shape = joined(static_cast<std::uint64_t>(part.op) + 1, part.flags);
    const bool isFlipFlop = part.op == Op::FlipFlop;
    if (isFlipFlop || part.op == Op::Latch) {
        const std::size_t controls = isFlipFlop ? 4 : 2;
        making.inputs.assign(inputs.begin(), inputs.begin() + controls);
        addEachWord(inputs, controls + index, inputs.size(), width, making.inputs);
        shape = joined(shape, static_cast<unsigned char>(bitAt(part.reset, index)));
        shape = joined(shape, static_cast<unsigned char>(bitAt(part.start, index)));
    } else if (part.op == Op::OneHot || part.op == Op::Select) {
        const std::size_t words = inputs.size() - (part.op == Op::OneHot ? part.selects : part.inputs);
        addEachWord(inputs, index, words, width, making.inputs);
        making.inputs.insert(making.inputs.end(), inputs.begin() + words, inputs.end());
    } else if (part.op == Op::Add && !part.has(PART_CARRIES) && index < part.inputs) {
        for (std::size_t bit = 0; bit <= index; ++bit) {
            making.inputs.push_back(inputs[bit]);
            making.inputs.push_back(inputs[part.inputs + bit]);
        }
        making.inputs.insert(making.inputs.end(), inputs.begin() + 2 * std::ptrdiff_t{part.inputs}, inputs.end());
    } else {
        making.inputs.assign(inputs.begin(), inputs.end());
        for (const std::uint64_t value : {std::uint64_t{part.width}, std::uint64_t{part.inputs},
                                          std::uint64_t{part.selects}, part.table, std::uint64_t{index}}) {
            shape = joined(shape, value);
        }
        for (const std::uint64_t table : part.tables) {
            shape = joined(shape, table);
        }
        if (part.op == Op::MemoryRead || part.op == Op::ClockedRead) {
            const Memory &memory = graph.memories[node.state];
            shape = joined(joined(shape, memory.width), memory.addressBits);
            shape = withNames ? hashOf(memory.shape->name, shape) : shape;
        }
    }
    making.shape = shape;
}

} // namespace kvr::netlistdb::analysis::plan
