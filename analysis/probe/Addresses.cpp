#include "analysis/probe/Addresses.h"

#include "analysis/probe/LaneVector.h"

namespace kvr::netlistdb::analysis::probe {

namespace {

/// The tree of choices over the bits of an address.
template <unsigned LEVELS>
LaneVector chosen(const Lanes *contents, std::size_t wordSize, const std::array<LaneVector, 2> *choices)
{
    if constexpr (LEVELS == 0) {
        return vectorOf(*contents);
    } else {
        const std::array<LaneVector, 2> &own = choices[LEVELS - 1];
        return (own[0] & chosen<LEVELS - 1>(contents, wordSize, choices)) |
               (own[1] & chosen<LEVELS - 1>(contents + (wordSize << (LEVELS - 1)), wordSize, choices));
    }
}

template <unsigned LEVELS> void readEach(const Lanes *contents, std::size_t wordSize,
                                         const std::array<LaneVector, 2> *choices, std::uint64_t known, Lanes *word,
                                         std::size_t width)
{
    for (std::size_t bit = 0; bit < width; ++bit) {
        word[bit] = inLanes(known, lanesOf(chosen<LEVELS>(contents + bit, wordSize, choices)), UNKNOWN);
    }
}

} // namespace

void readFew(const std::vector<Lanes> &values, Span<Signal> address, const Lanes *contents, std::size_t wordSize,
             Lanes *word, std::size_t width)
{
    std::array<std::array<LaneVector, 2>, FEW_ADDRESS_BITS> choices;
    std::uint64_t known = ALL_LANES;
    for (std::size_t bit = 0; bit < address.size(); ++bit) {
        const Lanes &value = values[address[bit]];
        known &= value.known();
        choices[bit] = {LaneVector{value.zero, value.zero}, LaneVector{value.one, value.one}};
    }
    switch (address.size()) {
    case 0:
        return readEach<0>(contents, wordSize, choices.data(), known, word, width);
    case 1:
        return readEach<1>(contents, wordSize, choices.data(), known, word, width);
    case 2:
        return readEach<2>(contents, wordSize, choices.data(), known, word, width);
    case 3:
        return readEach<3>(contents, wordSize, choices.data(), known, word, width);
    case 4:
        return readEach<4>(contents, wordSize, choices.data(), known, word, width);
    case 5:
        return readEach<5>(contents, wordSize, choices.data(), known, word, width);
    default:
        return readEach<6>(contents, wordSize, choices.data(), known, word, width);
    }
}

} // namespace kvr::netlistdb::analysis::probe
