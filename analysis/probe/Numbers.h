#pragma once

#include "analysis/probe/BitGraph.h"
#include "analysis/probe/Lanes.h"

#include <array>
#include <vector>

namespace kvr::netlistdb::analysis::probe {

/// A number of up to 64 bits in each run.
using Numbers = std::array<std::uint64_t, 64>;

/// The numbers that up to 64 bits are in each run; bits that are not known count as 0. Returns the runs in which all
/// are known.
std::uint64_t numbersOf(const std::vector<Lanes> &values, Span<Signal> bits, Numbers &numbers);
/// The same for two numbers of one width, in less time where both are extensions of numbers of at most 32 bits.
std::uint64_t numbersOf(const std::vector<Lanes> &values, Span<Signal> left, Span<Signal> right, Numbers &leftNumbers,
                        Numbers &rightNumbers);
/// Turns numbers into the bits that they are made of, the first @p count of them: bit i of word j becomes bit j of
/// word i.
void intoBits(Numbers &numbers, std::size_t count);
/// Puts numbers on wires bit by bit, not known outside of @p known.
void spread(Numbers &numbers, std::uint64_t known, Span<Signal> bits, std::vector<Lanes> &values);

} // namespace kvr::netlistdb::analysis::probe
