#pragma once

#include <cstdint>

namespace kvr::netlistdb::yosys {

/// A bit of a module as the file names it: the number of a net, or one of the constants.
using Bit = std::uint32_t;

constexpr Bit MOST_BIT = 0x7FFFFFFFu;
constexpr Bit FIRST_CONSTANT = 0xFFFFFFF0u;
constexpr unsigned CONSTANTS = 4;
/// The constants, in the order of CONSTANT_NAMES.
constexpr const char *CONSTANT_NAMES = "01xz";

inline bool isConstant(Bit bit)
{
    return bit >= FIRST_CONSTANT;
}

/// How a vector counts its bits. Files list bits from the least significant one on.
struct VectorRange {
    int offset = 0;     ///< the lowest index
    unsigned width = 0; ///< number of bits
    bool upto = false;  ///< declared [low:high], the lowest index being the most significant bit
    bool isVector() const { return width != 1 || offset != 0; }
    int high() const { return static_cast<int>(offset + static_cast<std::int64_t>(width) - 1); }
    int left() const { return upto ? offset : high(); }
    int right() const { return upto ? high() : offset; }
    /// Index of bit number @p position of the file's list.
    int indexOf(unsigned position) const
    {
        return upto ? high() - static_cast<int>(position) : offset + static_cast<int>(position);
    }
};

} // namespace kvr::netlistdb::yosys
