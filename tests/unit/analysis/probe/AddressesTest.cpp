#include "analysis/probe/Addresses.h"
#include "analysis/probe/Hash.h"

#include <gtest/gtest.h>

#include <map>

namespace analysis_test {
namespace {

using namespace kvr::netlistdb::analysis;
using namespace kvr::netlistdb::analysis::probe;

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
        std::vector<Lanes> values;
        std::vector<Signal> address;
        for (std::size_t bit = 0; bit < bits; ++bit) {
            const std::uint64_t value = random.next();
            const std::uint64_t unknown = random.seldom(4);
            values.push_back({~value | unknown, value | unknown});
            address.push_back(static_cast<Signal>(bits - 1 - bit));
        }
        const std::uint64_t lanes = ~random.seldom(3);
        for (const std::size_t words : {std::size_t{1} << bits, std::size_t{3}}) {
            std::map<std::size_t, std::uint64_t> found;
            forEachAddress(values, {address.data(), address.data() + bits}, words, lanes,
                           [&](std::size_t place, std::uint64_t runs) {
                               EXPECT_EQ(found[place] & runs, 0U) << "place " << place << " twice in one run";
                               found[place] |= runs;
                           });
            EXPECT_EQ(found, expected(values, address, words, lanes)) << bits << " bits, " << words << " words";
        }
    }
}

} // namespace
} // namespace analysis_test
