// Changes the content of a saved netlist and makes header and checksum right again: what follows the checksum is what
// there is to find. Only a few inputs are left with a header that is wrong.

#include "tests/unit/platform/SavedFileBytes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t *data, std::size_t size, std::size_t maxSize);

namespace {

using platformtest::HEADER_SIZE;

constexpr std::size_t WORD = 8; // of the content
/// Magic, version and zero.
constexpr unsigned char SOUND_START[] = {0x8E, 'N', 'L', 'D', 'B', '\r', '\n', 0x1A, 1, 0, 0, 0, 0, 0, 0, 0};
constexpr unsigned UNSEALED_ONE_IN = 50;

std::size_t below(std::minstd_rand &random, std::size_t bound)
{
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
}

/// Numbers, lengths and pointers are where the content can lie.
void changeNumber(std::string &bytes, std::minstd_rand &random)
{
    std::uint32_t number = 0;
    const std::size_t numbers = (bytes.size() - HEADER_SIZE) / sizeof number;
    char *place = &bytes[HEADER_SIZE + below(random, numbers) * sizeof number];
    std::memcpy(&number, place, sizeof number);
    switch (below(random, 6)) {
    case 0:
        ++number;
        break;
    case 1:
        --number;
        break;
    case 2:
        number = static_cast<std::uint32_t>(below(random, 16));
        break;
    case 3:
        number ^= std::uint32_t{1} << below(random, 32);
        break;
    case 4:
        number = UINT32_MAX - static_cast<std::uint32_t>(below(random, 4));
        break;
    default: // what stands elsewhere, as a second reference to the same has it
        std::memcpy(&number, &bytes[HEADER_SIZE + below(random, numbers) * sizeof number], sizeof number);
        break;
    }
    std::memcpy(place, &number, sizeof number);
}

void moveWords(std::string &bytes, std::minstd_rand &random)
{
    const std::size_t words = (bytes.size() - HEADER_SIZE) / WORD;
    const std::size_t from = below(random, words);
    const std::size_t to = below(random, words);
    const std::size_t count = 1 + below(random, std::min<std::size_t>(words - std::max(from, to), 4));
    std::memmove(&bytes[HEADER_SIZE + to * WORD], &bytes[HEADER_SIZE + from * WORD], count * WORD);
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t *data, std::size_t size, std::size_t maxSize, unsigned seed)
{
    std::minstd_rand random(seed);
    if (maxSize < HEADER_SIZE + WORD || below(random, UNSEALED_ONE_IN) == 0) {
        return LLVMFuzzerMutate(data, size, maxSize);
    }
    if (size < HEADER_SIZE + WORD) {
        size = HEADER_SIZE + WORD;
        std::fill_n(data, size, std::uint8_t{0});
    }
    if (below(random, 3) == 0) {
        size = HEADER_SIZE + LLVMFuzzerMutate(data + HEADER_SIZE, size - HEADER_SIZE, maxSize - HEADER_SIZE);
    }
    size = std::max(size / WORD * WORD, HEADER_SIZE + WORD);
    std::string bytes(reinterpret_cast<const char *>(data), size);
    for (std::size_t changes = below(random, 4); changes > 0; --changes) {
        if (below(random, 4) == 0) {
            moveWords(bytes, random);
        } else {
            changeNumber(bytes, random);
        }
    }
    std::memcpy(bytes.data(), SOUND_START, sizeof SOUND_START);
    bytes = platformtest::resealed(bytes);
    std::memcpy(data, bytes.data(), bytes.size());
    return bytes.size();
}
