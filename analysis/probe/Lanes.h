#pragma once

#include <cstddef>
#include <cstdint>

namespace kvr::netlistdb::analysis::probe {

/// How many elements ahead of the one at hand scattered values are asked for, so that they are there in time.
constexpr std::size_t FETCHED_AHEAD = 16;

/// A value in 64 independent runs of a simulation, one bit each. A run whose value is not known has both bits set.
struct Lanes {
    std::uint64_t zero; ///< runs in which it may be 0
    std::uint64_t one;  ///< runs in which it may be 1

    std::uint64_t known() const { return zero ^ one; }
    friend bool operator==(const Lanes &a, const Lanes &b) { return a.zero == b.zero && a.one == b.one; }
    friend bool operator!=(const Lanes &a, const Lanes &b) { return !(a == b); }
};

constexpr std::uint64_t ALL_LANES = ~std::uint64_t{0};
constexpr Lanes UNKNOWN{ALL_LANES, ALL_LANES};
constexpr Lanes ZERO{ALL_LANES, 0};
constexpr Lanes ONE{0, ALL_LANES};

inline Lanes lanesOf(std::uint64_t value)
{
    return {~value, value};
}

inline Lanes operator~(const Lanes &a)
{
    return {a.one, a.zero};
}

inline Lanes operator&(const Lanes &a, const Lanes &b)
{
    return {a.zero | b.zero, a.one & b.one};
}

inline Lanes operator|(const Lanes &a, const Lanes &b)
{
    return {a.zero & b.zero, a.one | b.one};
}

inline Lanes operator^(const Lanes &a, const Lanes &b)
{
    return {(a.zero & b.zero) | (a.one & b.one), (a.zero & b.one) | (a.one & b.zero)};
}

/// @p a where @p select is 0 and @p b where it is 1; where it is not known, what both agree on.
inline Lanes choose(const Lanes &select, const Lanes &a, const Lanes &b)
{
    return {(select.zero & a.zero) | (select.one & b.zero), (select.zero & a.one) | (select.one & b.one)};
}

/// @p a in the runs of @p mask, otherwise @p b.
inline Lanes inLanes(std::uint64_t mask, const Lanes &a, const Lanes &b)
{
    return {(a.zero & mask) | (b.zero & ~mask), (a.one & mask) | (b.one & ~mask)};
}

} // namespace kvr::netlistdb::analysis::probe
