#include "analysis/probe/Numbers.h"
#include "analysis/probe/Hash.h"

#include <gtest/gtest.h>

#include <vector>

namespace analysis_test {
namespace {

using namespace kvr::netlistdb::analysis;
using namespace kvr::netlistdb::analysis::probe;

/// Wires of a number of @p own random bits, the last of which is repeated up to @p width.
struct RandomNumber {
    RandomNumber(Random &random, std::vector<Lanes> &values, std::size_t own, std::size_t width)
    {
        for (std::size_t bit = 0; bit < width; ++bit) {
            if (bit < own) {
                const std::uint64_t value = random.next();
                const std::uint64_t unknown = random.seldom(9);
                signals.push_back(static_cast<Signal>(values.size()));
                values.push_back({~value | unknown, value | unknown});
            } else {
                signals.push_back(signals.back());
            }
        }
    }
    Span<Signal> span() const { return {signals.data(), signals.data() + signals.size()}; }
    bool isKnown(const std::vector<Lanes> &values, unsigned lane) const
    {
        std::uint64_t known = ALL_LANES;
        for (const Signal signal : signals) {
            known &= values[signal].known();
        }
        return (known >> lane & 1) != 0;
    }
    /// Its value in a run, bit by bit.
    std::uint64_t in(const std::vector<Lanes> &values, unsigned lane) const
    {
        std::uint64_t number = 0;
        for (std::size_t bit = 0; bit < signals.size(); ++bit) {
            number |= (values[signals[bit]].one >> lane & 1) << bit;
        }
        return number;
    }

    std::vector<Signal> signals;
};

struct Widths {
    std::size_t left;
    std::size_t right;
    std::size_t all;
};

class NumbersTest : public testing::TestWithParam<Widths> {};

TEST_P(NumbersTest, AreReadInEveryRunAloneAndInPairs)
{
    Random random(3);
    std::vector<Lanes> values;
    const RandomNumber left(random, values, GetParam().left, GetParam().all);
    const RandomNumber right(random, values, GetParam().right, GetParam().all);
    Numbers alone;
    Numbers pair[2];
    const std::uint64_t known = numbersOf(values, left.span(), alone);
    const std::uint64_t bothKnown = numbersOf(values, left.span(), right.span(), pair[0], pair[1]);
    for (unsigned lane = 0; lane < 64; ++lane) {
        const bool isKnown = left.isKnown(values, lane);
        ASSERT_EQ((known >> lane & 1) != 0, isKnown) << "run " << lane;
        ASSERT_EQ((bothKnown >> lane & 1) != 0, isKnown && right.isKnown(values, lane)) << "run " << lane;
        if ((known >> lane & 1) != 0) {
            EXPECT_EQ(alone[lane], left.in(values, lane)) << "run " << lane;
        }
        if ((bothKnown >> lane & 1) != 0) {
            EXPECT_EQ(pair[0][lane], left.in(values, lane)) << "run " << lane;
            EXPECT_EQ(pair[1][lane], right.in(values, lane)) << "run " << lane;
        }
    }
}

TEST_P(NumbersTest, ComeBackAsTheBitsThatTheyWereReadFrom)
{
    Random random(4);
    std::vector<Lanes> values;
    const RandomNumber number(random, values, GetParam().all, GetParam().all);
    Numbers numbers;
    const std::uint64_t known = numbersOf(values, number.span(), numbers);
    std::vector<Lanes> spreadValues(values.size(), ZERO);
    spread(numbers, known, number.span(), spreadValues);
    for (std::size_t bit = 0; bit < values.size(); ++bit) {
        EXPECT_TRUE(spreadValues[bit] == inLanes(known, values[bit], UNKNOWN)) << "bit " << bit;
    }
}

// Up to 32 bits of their own are read together; 33 and more are not.
INSTANTIATE_TEST_SUITE_P(OfAllWidths, NumbersTest,
                         testing::Values(Widths{1, 1, 1}, Widths{5, 7, 12}, Widths{31, 32, 32}, Widths{32, 18, 48},
                                         Widths{33, 18, 48}, Widths{18, 33, 33}, Widths{25, 1, 64},
                                         Widths{64, 64, 64}));

} // namespace
} // namespace analysis_test
