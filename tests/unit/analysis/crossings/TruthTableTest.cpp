#include "analysis/crossings/CellFunctions.h"

#include <gtest/gtest.h>

using kvr::netlistdb::analysis::TruthTable;

namespace {

constexpr std::uint64_t AND = 0b1000;
constexpr std::uint64_t XOR = 0b0110;
/// Inputs A, B, S, the select being the highest.
constexpr std::uint64_t MUX = 0b11001010;

TEST(TruthTable, OneInputOfAnAndBlocksTheOther)
{
    const TruthTable table{{0, 1}, AND};
    EXPECT_TRUE(table.isBlocked(0, 0b10));
    EXPECT_FALSE(table.isBlocked(0, 0));
    EXPECT_FALSE(table.isBlocked(0, 0b01)) << "an input does not block itself";
}

TEST(TruthTable, NothingBlocksAnExclusiveOr)
{
    EXPECT_FALSE((TruthTable{{0, 1}, XOR}.isBlocked(0, 0b10)));
}

TEST(TruthTable, TheSelectOfAMultiplexerBlocksItsDataAndNotTheReverse)
{
    const TruthTable table{{0, 1, 2}, MUX};
    EXPECT_TRUE(table.isBlocked(0, 0b100));
    EXPECT_TRUE(table.isBlocked(1, 0b100));
    EXPECT_FALSE(table.isBlocked(0, 0b010));
    EXPECT_TRUE(table.isBlocked(2, 0b011)) << "equal data on both sides";
    EXPECT_FALSE(table.isBlocked(2, 0b001));
}

TEST(TruthTable, SeveralInputsBlockTogether)
{
    // (a xor b) and c
    TruthTable table{{0, 1, 2}, 0b01100000};
    EXPECT_FALSE(table.isBlocked(2, 0b001));
    EXPECT_TRUE(table.isBlocked(2, 0b011));
}

TEST(TruthTable, ComputesSixtyFourValuesAtATime)
{
    EXPECT_EQ((TruthTable{{0, 1}, AND}.evaluate({0b1100, 0b1010})), 0b1000U);
    EXPECT_EQ((TruthTable{{0, 1}, XOR}.evaluate({0b1100, 0b1010})), 0b0110U);
    EXPECT_EQ((TruthTable{{0, 1, 2}, MUX}.evaluate({0b11, 0b00, 0b10})), 0b01U);
}

} // namespace
