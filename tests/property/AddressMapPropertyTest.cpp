// AddressMap against std::map, through long random sequences of operations on address patterns of several kinds.

#include "netlist/AddressMap.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>
#include <utility>
#include <vector>

namespace kvr::netlistdb {
namespace {

using Address = AddressMap::Address;

/// Draws addresses as they come about: scattered, side by side, in a few pages, unaligned.
class AddressSource {
  public:
    explicit AddressSource(std::mt19937_64 &random) : m_random(random), m_base(random() & ~Address{4095}) {}

    Address next()
    {
        switch (m_random() % 6) {
        case 0:
            return m_random();
        case 1:
            return m_base + (m_random() % 4096) * 8;
        case 2:
            return m_base + m_random() % 40000;
        case 3:
            return m_ascending += 16 + m_random() % 200;
        case 4:
            return (m_random() % 64) << 13;
        default:
            return m_base + ((m_random() % 20) << 20) + (m_random() % 4) * 64;
        }
    }

  private:
    std::mt19937_64 &m_random;
    Address m_base;
    Address m_ascending = 0x5500'0000'0000u;
};

void expectSame(AddressMap &map, const std::map<Address, Address> &reference)
{
    ASSERT_EQ(map.size(), reference.size());
    ASSERT_EQ(map.empty(), reference.empty());
    auto expected = reference.begin();
    bool same = true;
    map.forEach([&](Address key, Address &value) {
        same = same && expected != reference.end() && expected->first == key && expected->second == value;
        ++expected;
    });
    ASSERT_TRUE(same);
    ASSERT_TRUE(expected == reference.end());
}

void runSequence(std::uint64_t seed)
{
    std::mt19937_64 random(seed);
    AddressSource source(random);
    AddressMap map;
    std::map<Address, Address> reference;
    std::vector<Address> seen;
    const auto anyKey = [&] {
        return !seen.empty() && random() % 3 != 0 ? seen[random() % seen.size()] : source.next();
    };
    const std::uint64_t steps = 500 + random() % 3000;
    const std::uint64_t erasing = random() % 60; // in percent
    for (std::uint64_t step = 0; step < steps; ++step) {
        const Address key = anyKey();
        if (random() % 100 < erasing) {
            ASSERT_EQ(map.erase(key), reference.erase(key) == 1) << key;
        } else {
            const Address value = random() % 5 == 0 ? 0 : random();
            ASSERT_EQ(map.insertIfAbsent(key, value), reference.emplace(key, value).second) << key;
            seen.push_back(key);
        }
        const Address asked = anyKey();
        const Address *found = map.find(asked);
        const auto expected = reference.find(asked);
        ASSERT_EQ(found != nullptr, expected != reference.end()) << asked;
        if (found != nullptr) {
            ASSERT_EQ(*found, expected->second) << asked;
        }
        if (step == steps / 2) {
            const Address divisor = 2 + random() % 3;
            map.eraseIf([&](Address k, Address &v) { return (k ^ v) % divisor == 0; });
            for (auto entry = reference.begin(); entry != reference.end();) {
                entry = (entry->first ^ entry->second) % divisor == 0 ? reference.erase(entry) : std::next(entry);
            }
            expectSame(map, reference);
        }
    }
    expectSame(map, reference);
    for (const Address key : seen) {
        ASSERT_EQ(map.erase(key), reference.erase(key) == 1);
    }
    expectSame(map, reference);
}

TEST(AddressMapProperty, AnswersLikeAnOrderedMapOnRandomSequences)
{
    for (std::uint64_t seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        runSequence(seed);
        if (HasFatalFailure()) {
            return;
        }
    }
}

} // namespace
} // namespace kvr::netlistdb
