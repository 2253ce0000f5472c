#pragma once

#include "analysis/probe/Lanes.h"

#include <cstdint>
#include <cstring>

namespace kvr::netlistdb::analysis::probe {

/// Lanes in one vector register: both words are worked on at once.
using LaneVector = std::uint64_t __attribute__((vector_size(16)));

constexpr LaneVector VECTOR_ZERO{ALL_LANES, 0};
constexpr LaneVector VECTOR_ONE{0, ALL_LANES};
constexpr LaneVector VECTOR_UNKNOWN{ALL_LANES, ALL_LANES};

inline LaneVector vectorOf(const Lanes &lanes)
{
    LaneVector vector;
    static_assert(sizeof(vector) == sizeof(lanes), "two words");
    std::memcpy(&vector, &lanes, sizeof(vector));
    return vector;
}

inline Lanes lanesOf(LaneVector vector)
{
    return {vector[0], vector[1]};
}

inline LaneVector inverse(LaneVector a)
{
    return __builtin_shufflevector(a, a, 1, 0);
}

/// A value that chooses between two others.
struct Choice {
    explicit Choice(const Lanes &select) : zero{select.zero, select.zero}, one{select.one, select.one} {}
    /// @p a where it is 0 and @p b where it is 1; where it is not known, what both agree on.
    LaneVector of(LaneVector a, LaneVector b) const { return (zero & a) | (one & b); }

    LaneVector zero;
    LaneVector one;
};

} // namespace kvr::netlistdb::analysis::probe
