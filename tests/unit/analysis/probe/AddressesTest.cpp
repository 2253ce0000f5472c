#include "analysis/probe/Addresses.h"
#include "analysis/probe/Hash.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <vector>

namespace analysis_test {
namespace {

using namespace kvr::netlistdb::analysis;
using namespace kvr::netlistdb::analysis::probe;

/// Random bits of an address, some not known; their wires in descending order.
struct RandomAddress {
    RandomAddress(Random &random, std::size_t bits)
    {
        for (std::size_t bit = 0; bit < bits; ++bit) {
            const std::uint64_t value = random.next();
            const std::uint64_t unknown = random.seldom(4);
            values.push_back({~value | unknown, value | unknown});
            signals.push_back(static_cast<Signal>(bits - 1 - bit));
        }
    }
    Span<Signal> span() const { return {signals.data(), signals.data() + signals.size()}; }

    std::vector<Lanes> values;
    std::vector<Signal> signals;
};

/// The runs in which each place is selected, found one run and one bit at a time.
std::map<std::size_t, std::uint64_t> expected(const std::vector<Lanes> &values, const std::vector<Signal> &address,
                                              std::size_t words, std::uint64_t lanes)
{
    std::map<std::size_t, std::uint64_t> places;
    for (unsigned lane = 0; lane < 64; ++lane) {
        const std::uint64_t run = std::uint64_t{1} << lane;
        bool isKnown = (lanes & run) != 0;
        std::size_t place = 0;
        for (std::size_t bit = 0; bit < address.size(); ++bit) {
            const Lanes &value = values[address[bit]];
            isKnown = isKnown && (value.known() & run) != 0;
            place |= static_cast<std::size_t>(value.one >> lane & 1) << bit;
        }
        if (isKnown && place < words) {
            places[place] |= run;
        }
    }
    return places;
}

TEST(Addresses, EveryPlaceComesWithTheRunsThatSelectIt)
{
    Random random(7);
    for (std::size_t bits = 0; bits <= 9; ++bits) {
        const RandomAddress address(random, bits);
        const std::uint64_t lanes = ~random.seldom(3);
        for (const std::size_t words : {std::size_t{1} << bits, std::size_t{3}}) {
            std::map<std::size_t, std::uint64_t> found;
            std::set<std::size_t> prepared;
            forEachAddress(
                address.values, address.span(), words, lanes, [&](std::size_t place) { prepared.insert(place); },
                [&](std::size_t place, std::uint64_t runs) {
                    EXPECT_EQ(found[place] & runs, 0U) << "place " << place << " twice in one run";
                    EXPECT_TRUE(bits <= FEW_ADDRESS_BITS || prepared.count(place) == 1) << "place " << place;
                    found[place] |= runs;
                });
            EXPECT_EQ(found, expected(address.values, address.signals, words, lanes))
                << bits << " bits, " << words << " words";
            for (const std::size_t place : prepared) {
                EXPECT_LT(place, words);
            }
        }
    }
}

TEST(Addresses, AFewBitsReadTheWordThatEachRunSelects)
{
    constexpr std::size_t WORD_SIZE = 5; // of which three bits are read
    constexpr std::size_t WIDTH = 3;
    Random random(9);
    for (std::size_t bits = 0; bits <= FEW_ADDRESS_BITS; ++bits) {
        const RandomAddress address(random, bits);
        std::vector<Lanes> contents(WORD_SIZE << bits);
        for (Lanes &each : contents) {
            const std::uint64_t value = random.next();
            const std::uint64_t unknown = random.seldom(3);
            each = {~value | unknown, value | unknown};
        }
        std::vector<Lanes> wanted(WIDTH, UNKNOWN);
        for (const auto &[place, runs] : expected(address.values, address.signals, std::size_t{1} << bits, ALL_LANES)) {
            for (std::size_t bit = 0; bit < WIDTH; ++bit) {
                wanted[bit] = inLanes(runs, contents[place * WORD_SIZE + bit], wanted[bit]);
            }
        }
        std::vector<Lanes> word(WIDTH, ZERO);
        readFew(address.values, address.span(), contents.data(), WORD_SIZE, word.data(), WIDTH);
        EXPECT_TRUE(word == wanted) << bits << " bits";
    }
}

} // namespace
} // namespace analysis_test
