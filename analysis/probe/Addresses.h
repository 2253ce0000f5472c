#pragma once

#include "analysis/probe/Logic.h"

#include <array>
#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis::probe {

/// Calls @p visit with each of the first @p words places that @p address selects in some of @p lanes, and the runs in
/// which it does. Runs in which the address is not known are left out. A large place may come several times.
template <typename Visit> void forEachAddress(const std::vector<Lanes> &values, Span<Signal> address, std::size_t words,
                                              std::uint64_t lanes, Visit visit)
{
    constexpr std::size_t FEW_BITS = 6;
    if (address.size() <= FEW_BITS) {
        // A decoder: each bit of the address parts the runs of every place so far.
        std::array<std::uint64_t, std::size_t{1} << FEW_BITS> runs;
        runs[0] = lanes;
        std::size_t count = 1;
        for (const Signal bit : address) {
            const Lanes &value = values[bit];
            for (std::size_t place = 0; place < count; ++place) {
                runs[count + place] = runs[place] & value.one & ~value.zero;
                runs[place] &= value.zero & ~value.one;
            }
            count *= 2;
        }
        for (std::size_t place = 0; place < count && place < words; ++place) {
            if (runs[place] != 0) {
                visit(place, runs[place]);
            }
        }
        return;
    }
    std::array<std::uint64_t, 64> places;
    lanes &= numbersOf(values, address, places);
    for (std::size_t lane = 0; lane < places.size(); ++lane) {
        const std::uint64_t run = std::uint64_t{1} << lane;
        if ((lanes & run) != 0 && places[lane] < words) {
            visit(places[lane], run);
        }
    }
}

} // namespace kvr::netlistdb::analysis::probe
