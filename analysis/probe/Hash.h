#pragma once

#include <cstdint>
#include <string_view>

namespace kvr::netlistdb::analysis::probe {

/// The finaliser of a 64-bit hash: every bit of the result depends on every bit of @p value.
inline std::uint64_t mixed(std::uint64_t value)
{
    value ^= value >> 30;
    value *= 0xBF58476D1CE4E5B9ULL;
    value ^= value >> 27;
    value *= 0x94D049BB133111EBULL;
    return value ^ value >> 31;
}

constexpr std::uint64_t EMPTY_TEXT = 0xCBF29CE484222325ULL;

/// FNV-1a of what was hashed before and @p text behind it.
inline std::uint64_t hashOf(std::string_view text, std::uint64_t before = EMPTY_TEXT)
{
    for (const char c : text) {
        before = (before ^ static_cast<unsigned char>(c)) * 0x100000001B3ULL;
    }
    return before;
}

/// Random numbers, the same on every run (splitmix64).
class Random {
  public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}
    std::uint64_t next()
    {
        m_state += 0x9E3779B97F4A7C15ULL;
        return mixed(m_state);
    }
    /// Leaves out @p count numbers.
    void skip(std::uint64_t count) { m_state += count * 0x9E3779B97F4A7C15ULL; }
    /// Bits that are 1 one time in 2 to the @p power.
    std::uint64_t seldom(unsigned power)
    {
        std::uint64_t bits = ~std::uint64_t{0};
        while (power-- > 0) {
            bits &= next();
        }
        return bits;
    }

  private:
    std::uint64_t m_state;
};

} // namespace kvr::netlistdb::analysis::probe
