#pragma once

#include "analysis/CellModel.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kvr::netlistdb::analysis::probe {

/// What a part of a cell computes. The slots of a part stand in the order given; the outputs come last.
/// The numbers stay as they are, and none is given again: they are part of the fingerprints in files of probe plans.
enum class Op : std::uint8_t {
    Lut = 0,          ///< inputs (at most 6), Y: bit `inputs` of the table
    WideLut = 1,      ///< inputs, Y
    And = 2,          ///< inputs, Y
    Or = 3,           ///< inputs, Y
    Xor = 4,          ///< inputs, Y
    Add = 5,          ///< A, B, carry in, invert B, Y; with carries: sums of two bits and carries, too
    Equal = 6,        ///< A, B, Y
    Less = 7,         ///< A, B, Y
    ShiftLeft = 8,    ///< A, amount, fill, Y
    ShiftRight = 9,   ///< A, amount, fill, Y
    OneHot = 10,      ///< A, B words, selects, Y
    Select = 11,      ///< A words, address, Y
    Distribute = 12,  ///< A, address, Y words
    Multiply = 13,    ///< A, B, Y, all of one width
    Divide = 14,      ///< A, B, Y, all of one width; also the remainder
    Latch = 15,       ///< enable, reset, D, set, clear, Q
    MemoryRead = 16,  ///< clock, enable, block, address, Y
    ShiftOutput = 17, ///< address, Y: a stage of the shift register that stands in front of it
    // State that a clock changes.
    FlipFlop = 19,      ///< clock, enable, sync reset, async reset, D, load or set and clear, Q
    ShiftRegister = 20, ///< clock, enable, D
    MultiplyAdd = 21,   ///< clock, enable, A, B, C, P
    ClockedRead = 22,   ///< as MemoryRead
    MemoryWrite = 23,   ///< clock, address, D, enable of each bit
    MemoryStart = 24,   ///< address, D: contents before the first clock
};

/// Where a part is connected: a pin of the cell (its place among the ports of the view), a net inside the cell, or a
/// constant.
using Slot = std::int32_t;
constexpr Slot SLOT_ZERO = -1;
constexpr Slot SLOT_ONE = -2;
constexpr Slot SLOT_UNKNOWN = -3;
constexpr Slot innerSlot(std::int32_t net)
{
    return -4 - net;
}

/// Part of the fingerprints, too.
enum PartFlag : std::uint16_t {
    PART_NEGATED = 1,        ///< Y is inverted
    PART_SIGNED = 2,         ///< operands are in two's complement
    PART_OR_EQUAL = 4,       ///< of Less
    PART_CARRIES = 8,        ///< of Add: has further outputs
    PART_REMAINDER = 16,     ///< of Divide
    PART_FLOOR = 32,         ///< of Divide: rounds down
    PART_FALLING = 64,       ///< the clock acts when it falls
    PART_LOADS = 128,        ///< of FlipFlop: the async reset loads a value of its own slots
    PART_SETS_CLEARS = 256,  ///< of FlipFlop, Latch: has set and clear slots, active high
    PART_ENABLE_FIRST = 512, ///< of FlipFlop: the enable holds back the sync reset, too
    PART_WRITE_FIRST = 1024, ///< of ClockedRead: shows what is written at the same time
};

struct Part {
    Op op = Op::Lut;
    std::uint16_t flags = 0;
    std::uint16_t memory = 0;          ///< of memory parts: which memory of the cell
    std::uint32_t width = 1;           ///< bits of the result, or of a word
    std::uint32_t inputs = 0;          ///< number of inputs, or of bits of an operand or address
    std::uint32_t selects = 0;         ///< of OneHot
    std::uint64_t table = 0;           ///< of Lut
    std::vector<std::uint64_t> tables; ///< of WideLut
    std::string reset;                 ///< of FlipFlop, Latch: by bit, 0, 1 or x
    std::string start;                 ///< state before the first clock: by bit, 0, 1 or x; empty: not known
    std::vector<Slot> slots;

    bool has(PartFlag flag) const { return (flags & flag) != 0; }
    std::uint32_t outputs() const;
    /// Whether it has as many slots as its operation needs. Netlists that no tool wrote may have others.
    bool isWellFormed() const;
    bool isClocked() const { return op >= Op::FlipFlop && op <= Op::MemoryWrite; }
    /// True when Y follows inputs without a clock.
    bool isLogic() const { return op < Op::FlipFlop; }
};

/// A memory that a cell is made of, or that memory ports share by @c name.
struct MemoryShape {
    std::string name; ///< empty: the cell's own
    std::uint32_t width = 0;
    std::uint32_t addressBits = 0;
    std::string start; ///< contents word by word, the lowest bit first; empty: zeros
};

/// How a cell works: what all instances of one view with the same parameters have in common.
struct Recipe {
    CellKind kind = CellKind::Logic;
    bool isKnown = false; ///< otherwise nothing is known of its outputs
    std::vector<Part> parts;
    std::uint32_t innerNets = 0;
    std::vector<MemoryShape> memories;
    std::vector<std::pair<Slot, Slot>> joins; ///< an output and the pin or constant that it is
    std::vector<std::uint32_t> outputs;       ///< pins that the cell drives
};

} // namespace kvr::netlistdb::analysis::probe
