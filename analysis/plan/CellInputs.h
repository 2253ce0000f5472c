#pragma once

#include "analysis/probe/BitGraph.h"
#include "analysis/probe/Hash.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis::plan {

/// The hash of what was hashed before and @p value behind it.
inline std::uint64_t joined(std::uint64_t hash, std::uint64_t value)
{
    return probe::mixed(hash * 0x9E3779B97F4A7C15ULL + value);
}

/// One output of a part of a cell: a hash of what the part does to make it, and the wires that it is made from. Vectors
/// are taken bit by bit where the part works so: the width of a register or multiplexer makes no difference to a bit.
struct OutputMaking {
    std::uint64_t shape = 0;
    std::vector<probe::Signal> inputs;
    bool isState = false; ///< of a register, latch or memory
};

/// How the output @p index of @p node is made. Names count in the shape where @p withNames is true: those of memories.
void takeMaking(const probe::BitGraph &graph, const probe::Node &node, std::size_t index, bool withNames,
                OutputMaking &making);

/// Place of @p signal among the outputs of @p node, which drives it.
std::size_t outputOf(const probe::BitGraph &graph, const probe::Node &node, probe::Signal signal);

/// True for a part that keeps a value.
inline bool isState(const probe::Part &part)
{
    return part.isClocked() || part.op == probe::Op::Latch || part.op == probe::Op::ShiftOutput;
}

/// True for a part that gives the inverse of its only input.
bool isInverter(const probe::Part &part);

} // namespace kvr::netlistdb::analysis::plan
