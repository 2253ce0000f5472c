#include "analysis/plan/CellInputs.h"

namespace kvr::netlistdb::analysis::plan {

using namespace probe;

namespace {

char bitAt(const std::string &bits, std::size_t index)
{
    return index < bits.size() ? bits[index] : 'x';
}

} // namespace

bool isInverter(const Part &part)
{
    const bool isNegatedGate =
        (part.op == Op::And || part.op == Op::Or || part.op == Op::Xor) && part.has(PART_NEGATED);
    return part.slots.size() == 2 && (isNegatedGate || (part.op == Op::Lut && part.table == 1));
}

std::uint64_t shapeOf(const BitGraph &graph, const Node &node, std::size_t index, bool withNames)
{
    const Part &part = graph.partOf(node);
    std::uint64_t shape = joined(static_cast<std::uint64_t>(part.op) + 1, part.flags);
    if (part.op == Op::FlipFlop || part.op == Op::Latch) {
        shape = joined(shape, static_cast<unsigned char>(bitAt(part.reset, index)));
        return joined(shape, static_cast<unsigned char>(bitAt(part.start, index)));
    }
    if (part.op == Op::OneHot || part.op == Op::Select || makesSumBit(part, index)) {
        return shape;
    }
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
    return shape;
}

} // namespace kvr::netlistdb::analysis::plan
