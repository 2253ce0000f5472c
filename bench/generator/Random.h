#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

namespace kvr::netlistdb::bench {

/// Pseudo-random choices that are the same with every standard library: the engine's output is fixed by the language,
/// the standard distributions' is not.
class Random {
  public:
    explicit Random(std::uint64_t seed) : m_engine(seed) {}

    std::uint64_t bits() { return m_engine(); }
    /// A number in [0, bound); @p bound is at least 1.
    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(m_engine() % bound); }
    /// A number in [low, high].
    unsigned between(unsigned low, unsigned high) { return low + static_cast<unsigned>(below(high - low + 1)); }
    /// True in @p permille of a thousand cases.
    bool chance(unsigned permille) { return below(1000) < permille; }
    template <typename Container> const auto &pick(const Container &choices)
    {
        return choices[below(std::size(choices))];
    }

  private:
    std::mt19937_64 m_engine;
};

} // namespace kvr::netlistdb::bench
