#include "analysis/probe/Recipe.h"

namespace kvr::netlistdb::analysis::probe {

namespace {

constexpr std::uint32_t MOST_SELECTS = 24; ///< of a part whose slots double with each

} // namespace

std::uint32_t Part::outputs() const
{
    switch (op) {
    case Op::Lut:
    case Op::WideLut:
    case Op::And:
    case Op::Or:
    case Op::Xor:
    case Op::Equal:
    case Op::Less:
    case Op::ShiftOutput:
        return 1;
    case Op::Add:
        return has(PART_CARRIES) ? 3 * width : width;
    case Op::Distribute:
        return width << inputs;
    case Op::ShiftRegister:
    case Op::MemoryWrite:
    case Op::MemoryStart:
        return 0;
    default:
        return width;
    }
}

bool Part::isWellFormed() const
{
    const std::size_t word = width;
    const std::size_t words = inputs <= MOST_SELECTS ? std::size_t{1} << inputs : 0;
    const auto fits = [&](std::size_t count) { return slots.size() == count; };
    switch (op) {
    case Op::Lut:
        return inputs >= 1 && inputs <= 6 && fits(inputs + std::size_t{1});
    case Op::WideLut:
        return inputs > 6 && tables.size() == words / 64 && fits(inputs + std::size_t{1});
    case Op::And:
    case Op::Or:
    case Op::Xor:
        return fits(inputs + std::size_t{1});
    case Op::Add:
        return fits(2 * word + 2 + outputs());
    case Op::Equal:
    case Op::Less:
        return fits(2 * std::size_t{inputs} + 1);
    case Op::ShiftLeft:
    case Op::ShiftRight:
        return width <= inputs && fits(std::size_t{inputs} + selects + 1 + word);
    case Op::OneHot:
        return fits(word * (std::size_t{selects} + 1) + selects + word);
    case Op::Select:
        return words > 0 && fits(words * word + inputs + word);
    case Op::Distribute:
        return words > 0 && fits(word + inputs + words * word);
    case Op::Multiply:
    case Op::Divide:
        return width >= 1 && width <= 64 && fits(3 * word);
    case Op::Latch:
        return fits(2 + (has(PART_SETS_CLEARS) ? 4 : 2) * word);
    case Op::MemoryRead:
    case Op::ClockedRead:
        return fits(3 + inputs + word);
    case Op::ShiftOutput:
        return word == words && word <= 32 && fits(inputs + std::size_t{1});
    case Op::FlipFlop:
        return fits(4 + (has(PART_SETS_CLEARS) ? 4 : has(PART_LOADS) ? 3 : 2) * word);
    case Op::ShiftRegister:
        return fits(3);
    case Op::MultiplyAdd:
        return width <= 64 && fits(2 + 4 * word);
    case Op::MemoryWrite:
        return fits(1 + inputs + 2 * word);
    case Op::MemoryStart:
        return fits(inputs + word);
    }
    return false;
}

} // namespace kvr::netlistdb::analysis::probe
