#include "analysis/probe/Numbers.h"

#include <algorithm>

namespace kvr::netlistdb::analysis::probe {

namespace {

constexpr unsigned HALF = 32;

/// One step of a transposition (Hacker's Delight) of the first ROWS words: swaps blocks across the diagonal.
template <unsigned WIDTH, unsigned ROWS> void transposeBlocks(std::uint64_t *words, std::uint64_t mask)
{
    for (unsigned block = 0; block < ROWS; block += 2 * WIDTH) {
        for (unsigned at = block; at < block + WIDTH; ++at) {
            const std::uint64_t swapped = ((words[at] >> WIDTH) ^ words[at + WIDTH]) & mask;
            words[at] ^= swapped << WIDTH;
            words[at + WIDTH] ^= swapped;
        }
    }
}

/// Bit i of word j becomes bit j of word i, within halves of 32 bits.
template <unsigned ROWS> void transposeHalves(std::uint64_t *words)
{
    transposeBlocks<16, ROWS>(words, 0x0000FFFF0000FFFFULL);
    transposeBlocks<8, ROWS>(words, 0x00FF00FF00FF00FFULL);
    transposeBlocks<4, ROWS>(words, 0x0F0F0F0F0F0F0F0FULL);
    transposeBlocks<2, ROWS>(words, 0x3333333333333333ULL);
    transposeBlocks<1, ROWS>(words, 0x5555555555555555ULL);
}

void transpose(Numbers &words)
{
    transposeBlocks<HALF, 64>(words.data(), 0x00000000FFFFFFFFULL);
    transposeHalves<64>(words.data());
}

/// How many bits there are without those at the end that are copies of the sign.
std::size_t bitsWithSign(Span<Signal> bits)
{
    std::size_t count = bits.size();
    while (count > 1 && bits[count - 1] == bits[count - 2]) {
        --count;
    }
    return count;
}

/// Reads bits into words, up to @p end with copies of the last one. Returns the runs in which all are known.
std::uint64_t readBits(const std::vector<Lanes> &values, Span<Signal> bits, std::uint64_t *words, std::size_t end)
{
    std::uint64_t known = ALL_LANES;
    std::uint64_t last = 0;
    for (std::size_t bit = 0; bit < end; ++bit) {
        if (bit < bits.size()) {
            const Lanes &value = values[bits[bit]];
            known &= value.known();
            last = value.one & value.known();
        }
        words[bit] = last;
    }
    return known;
}

} // namespace

std::uint64_t numbersOf(const std::vector<Lanes> &values, Span<Signal> bits, Numbers &numbers)
{
    const std::size_t count = std::min<std::size_t>(bits.size(), numbers.size());
    numbers.fill(0);
    const std::uint64_t known = readBits(values, {bits.begin(), bits.begin() + count}, numbers.data(), count);
    transpose(numbers);
    return known;
}

std::uint64_t numbersOf(const std::vector<Lanes> &values, Span<Signal> left, Span<Signal> right, Numbers &leftNumbers,
                        Numbers &rightNumbers)
{
    const std::size_t leftBits = bitsWithSign(left);
    const std::size_t rightBits = bitsWithSign(right);
    if (leftBits > HALF || rightBits > HALF) {
        const std::uint64_t known = numbersOf(values, left, leftNumbers);
        return known & numbersOf(values, right, rightNumbers);
    }
    // Both in one transposition: the left one below.
    Numbers both;
    std::uint64_t known = readBits(values, {left.begin(), left.begin() + leftBits}, both.data(), HALF);
    known &= readBits(values, {right.begin(), right.begin() + rightBits}, both.data() + HALF, HALF);
    transpose(both);
    const std::uint64_t mask = left.size() < 64 ? (std::uint64_t{1} << left.size()) - 1 : ~std::uint64_t{0};
    for (std::size_t lane = 0; lane < both.size(); ++lane) {
        const auto low = static_cast<std::int32_t>(static_cast<std::uint32_t>(both[lane]));
        const auto high = static_cast<std::int32_t>(static_cast<std::uint32_t>(both[lane] >> HALF));
        leftNumbers[lane] = static_cast<std::uint64_t>(std::int64_t{low}) & mask;
        rightNumbers[lane] = static_cast<std::uint64_t>(std::int64_t{high}) & mask;
    }
    return known;
}

void intoBits(Numbers &numbers, std::size_t count)
{
    if (count > HALF) {
        transpose(numbers);
        return;
    }
    for (std::size_t at = 0; at < HALF; ++at) {
        numbers[at] = (numbers[at] & 0xFFFFFFFFULL) | numbers[at + HALF] << HALF;
    }
    transposeHalves<HALF>(numbers.data());
}

void spread(Numbers &numbers, std::uint64_t known, Span<Signal> bits, std::vector<Lanes> &values)
{
    intoBits(numbers, bits.size());
    for (std::size_t bit = 0; bit < bits.size(); ++bit) {
        values[bits[bit]] = inLanes(known, lanesOf(numbers[bit]), UNKNOWN);
    }
}

} // namespace kvr::netlistdb::analysis::probe
