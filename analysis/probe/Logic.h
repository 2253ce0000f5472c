#pragma once

#include "analysis/probe/BitGraph.h"
#include "analysis/probe/Lanes.h"

#include <array>
#include <vector>

/// The functions of cells without a clock, on 64 runs at a time.
namespace kvr::netlistdb::analysis::probe {

/// The numbers that up to 64 bits are in each run; bits that are not known count as 0. Returns the runs in which all
/// are known.
std::uint64_t numbersOf(const std::vector<Lanes> &values, Span<Signal> bits, std::array<std::uint64_t, 64> &numbers);
/// The other way round: bit by bit, not known outside of @p known.
void spread(std::array<std::uint64_t, 64> &numbers, std::uint64_t known, Span<Signal> bits, std::vector<Lanes> &values);

/// Evaluates a node that is logic and neither latch, memory, shift register nor pad.
void evaluate(const Part &part, Span<Signal> inputs, Span<Signal> outputs, std::vector<Lanes> &values);

} // namespace kvr::netlistdb::analysis::probe
