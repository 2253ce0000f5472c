#pragma once

#include "analysis/probe/Numbers.h"

#include <array>
#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis::probe {

/// Addresses of so many bits are decoded for all runs at once.
constexpr std::size_t FEW_ADDRESS_BITS = 6;

/// Reads the first @p width bits of the word that @p address, of few bits, selects in each run; @p contents has a word
/// every @p wordSize bits. Not known in runs in which the address is not.
void readFew(const std::vector<Lanes> &values, Span<Signal> address, const Lanes *contents, std::size_t wordSize,
             Lanes *word, std::size_t width);

/// Asks for a word of a memory, which will be needed soon.
inline void fetchWord(const Lanes *word, std::size_t width)
{
    constexpr std::size_t LANES_OF_LINE = 64 / sizeof(Lanes);
    for (std::size_t bit = 0; bit < width; bit += LANES_OF_LINE) {
        __builtin_prefetch(word + bit);
    }
}

/// Calls @p visit with each of the first @p words places that @p address selects in some of @p lanes, and the runs in
/// which it does. Runs in which the address is not known are left out. A large place may come several times; @p prepare
/// is called with all of them before the first visit.
template <typename Prepare, typename Visit> void forEachAddress(const std::vector<Lanes> &values, Span<Signal> address,
                                                                std::size_t words, std::uint64_t lanes, Prepare prepare,
                                                                Visit visit)
{
    if (address.size() <= FEW_ADDRESS_BITS) {
        // A decoder: each bit of the address parts the runs of every place so far.
        std::array<std::uint64_t, std::size_t{1} << FEW_ADDRESS_BITS> runs;
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
    Numbers places;
    lanes &= numbersOf(values, address, places);
    for (std::size_t lane = 0; lane < places.size(); ++lane) {
        if ((lanes >> lane & 1) != 0 && places[lane] < words) {
            prepare(places[lane]);
        }
    }
    for (std::size_t lane = 0; lane < places.size(); ++lane) {
        const std::uint64_t run = std::uint64_t{1} << lane;
        if ((lanes & run) != 0 && places[lane] < words) {
            visit(places[lane], run);
        }
    }
}

} // namespace kvr::netlistdb::analysis::probe
