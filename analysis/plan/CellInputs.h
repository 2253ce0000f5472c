#pragma once

#include "analysis/probe/BitGraph.h"
#include "analysis/probe/Hash.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis::plan {

/// The hash of what was hashed before and @p value behind it.
inline std::uint64_t joined(std::uint64_t hash, std::uint64_t value)
{
    return probe::mixed(hash * 0x9E3779B97F4A7C15ULL + value);
}

/// Whether the output @p index of @p part is a sum of which only the operands' bits up to it count.
inline bool makesSumBit(const probe::Part &part, std::size_t index)
{
    return part.op == probe::Op::Add && !part.has(probe::PART_CARRIES) && index < part.inputs;
}

/// A hash of what @p node does to make its output @p index. Names count where @p withNames is true: those of memories.
/// Vectors are taken bit by bit where the part works so: the width of a register or multiplexer makes no difference to
/// a bit.
std::uint64_t shapeOf(const probe::BitGraph &graph, const probe::Node &node, std::size_t index, bool withNames);

/// Visits the wires that the output @p index of @p node is made from, always in the same order.
template <typename Visit>
void forEachInput(const probe::BitGraph &graph, const probe::Node &node, std::size_t index, Visit visit)
{
    const probe::Part &part = graph.partOf(node);
    const Span<probe::Signal> inputs = graph.inputsOf(node);
    const std::size_t width = std::max<std::size_t>(part.width, 1);
    const auto visitAll = [&](std::size_t first, std::size_t end) {
        for (std::size_t at = first; at < end; ++at) {
            visit(inputs[at]);
        }
    };
    // One of each word.
    const auto visitWords = [&](std::size_t first, std::size_t end) {
        for (std::size_t at = first + index; at < end; at += width) {
            visit(inputs[at]);
        }
    };
    if (part.op == probe::Op::FlipFlop || part.op == probe::Op::Latch) {
        const std::size_t controls = part.op == probe::Op::FlipFlop ? 4 : 2;
        visitAll(0, controls);
        visitWords(controls, inputs.size());
    } else if (part.op == probe::Op::OneHot || part.op == probe::Op::Select) {
        const std::size_t words = inputs.size() - (part.op == probe::Op::OneHot ? part.selects : part.inputs);
        visitWords(0, words);
        visitAll(words, inputs.size());
    } else if (makesSumBit(part, index)) {
        for (std::size_t bit = 0; bit <= index; ++bit) {
            visit(inputs[bit]);
            visit(inputs[part.inputs + bit]);
        }
        visitAll(2 * std::size_t{part.inputs}, inputs.size());
    } else {
        visitAll(0, inputs.size());
    }
}

/// True for a part that keeps a value.
inline bool isState(const probe::Part &part)
{
    return part.isClocked() || part.op == probe::Op::Latch || part.op == probe::Op::ShiftOutput;
}

/// True for a part that gives the inverse of its only input.
bool isInverter(const probe::Part &part);

} // namespace kvr::netlistdb::analysis::plan
