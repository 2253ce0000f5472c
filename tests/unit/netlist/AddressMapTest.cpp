#include "netlist/AddressMap.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace kvr::netlistdb {
namespace {

using Address = AddressMap::Address;
using Entries = std::vector<std::pair<Address, Address>>;

Entries entriesOf(AddressMap &map)
{
    Entries entries;
    map.forEach([&](Address key, Address &value) { entries.emplace_back(key, value); });
    return entries;
}

/// The value of @p key, 0 when it is not there.
Address valueOf(const AddressMap &map, Address key)
{
    const Address *value = map.find(key);
    return value != nullptr ? *value : 0;
}

TEST(AddressMap, IsEmptyAtFirst)
{
    AddressMap map;
    EXPECT_TRUE(map.empty());
    EXPECT_EQ(map.size(), 0u);
    EXPECT_EQ(map.find(0), nullptr);
    EXPECT_EQ(map.find(4096), nullptr);
    EXPECT_FALSE(map.erase(4096));
    EXPECT_TRUE(entriesOf(map).empty());
}

TEST(AddressMap, NeverOverwritesAKey)
{
    AddressMap map;
    EXPECT_TRUE(map.insertIfAbsent(64, 1));
    EXPECT_FALSE(map.insertIfAbsent(64, 2));
    EXPECT_EQ(valueOf(map, 64), 1u);
    EXPECT_EQ(map.size(), 1u);
}

TEST(AddressMap, TellsNeighbouringAndUnalignedKeysApart)
{
    AddressMap map;
    for (const Address key : {8192u, 8193u, 8191u, 8200u, 1u, 0u}) {
        EXPECT_TRUE(map.insertIfAbsent(key, key + 100));
    }
    for (const Address key : {8192u, 8193u, 8191u, 8200u, 1u, 0u}) {
        EXPECT_EQ(valueOf(map, key), key + 100);
    }
    EXPECT_EQ(map.find(8194), nullptr);
    EXPECT_EQ(map.find(2), nullptr);
}

TEST(AddressMap, TakesTheLargestKeysAndAZeroValue)
{
    constexpr Address LARGEST = std::numeric_limits<Address>::max();
    AddressMap map;
    map.insertIfAbsent(LARGEST, 0);
    map.insertIfAbsent(LARGEST - 8, LARGEST);
    ASSERT_NE(map.find(LARGEST), nullptr);
    EXPECT_EQ(*map.find(LARGEST), 0u);
    EXPECT_EQ(entriesOf(map), (Entries{{LARGEST - 8, LARGEST}, {LARGEST, 0}}));
}

TEST(AddressMap, GoesThroughItsEntriesInAscendingOrderOfKey)
{
    AddressMap map;
    const std::vector<Address> keys{1u << 30, 8, 1u << 20, 16, (1u << 20) + 3, 0, 24};
    for (const Address key : keys) {
        map.insertIfAbsent(key, key * 2);
    }
    EXPECT_EQ(entriesOf(map), (Entries{{0, 0},
                                       {8, 16},
                                       {16, 32},
                                       {24, 48},
                                       {1u << 20, 1u << 21},
                                       {(1u << 20) + 3, (1u << 21) + 6},
                                       {1u << 30, 1u << 31}}));
}

TEST(AddressMap, HoldsDenseAscendingAndDescendingKeys)
{
    constexpr Address COUNT = 20000;
    AddressMap ascending;
    AddressMap descending;
    for (Address at = 0; at < COUNT; ++at) {
        ascending.insertIfAbsent(1000000 + at * 8, at);
        descending.insertIfAbsent(1000000 + (COUNT - 1 - at) * 8, COUNT - 1 - at);
    }
    EXPECT_EQ(ascending.size(), COUNT);
    EXPECT_EQ(entriesOf(ascending), entriesOf(descending));
    for (Address at = 0; at < COUNT; ++at) {
        ASSERT_EQ(valueOf(ascending, 1000000 + at * 8), at);
        ASSERT_EQ(ascending.find(1000000 + at * 8 + 4), nullptr);
    }
}

TEST(AddressMap, ForgetsErasedKeysAndTakesThemAgain)
{
    AddressMap map;
    for (Address key = 0; key < 100; ++key) {
        map.insertIfAbsent(key * 24, key);
    }
    for (Address key = 0; key < 100; key += 2) {
        EXPECT_TRUE(map.erase(key * 24));
        EXPECT_FALSE(map.erase(key * 24));
    }
    EXPECT_EQ(map.size(), 50u);
    EXPECT_EQ(map.find(48), nullptr);
    EXPECT_EQ(valueOf(map, 72), 3u);
    EXPECT_TRUE(map.insertIfAbsent(48, 7));
    EXPECT_EQ(valueOf(map, 48), 7u);
    EXPECT_FALSE(map.erase(49));
}

TEST(AddressMap, ReusesThePlacesOfEmptyPages)
{
    AddressMap map;
    for (Address round = 0; round < 1000; ++round) {
        const Address key = round << 20;
        map.insertIfAbsent(key, round + 1);
        EXPECT_EQ(valueOf(map, key), round + 1);
        if (round > 3) {
            EXPECT_TRUE(map.erase((round - 4) << 20));
        }
    }
    EXPECT_EQ(map.size(), 4u);
    EXPECT_EQ(entriesOf(map).front().first, Address{996} << 20);
}

TEST(AddressMap, LetsValuesBeOverwrittenInPlace)
{
    AddressMap map;
    map.insertIfAbsent(8, 1);
    map.insertIfAbsent(16, 2);
    *map.find(8) = 10;
    map.forEach([](Address, Address &value) { value += 1; });
    EXPECT_EQ(entriesOf(map), (Entries{{8, 11}, {16, 3}}));
}

TEST(AddressMap, RemovesWhatAPredicatePicks)
{
    AddressMap map;
    for (Address key = 0; key < 5000; ++key) {
        map.insertIfAbsent(key * 16, key);
    }
    map.eraseIf([](Address, Address &value) { return value % 3 != 0; });
    EXPECT_EQ(map.size(), 1667u);
    EXPECT_EQ(map.find(16), nullptr);
    EXPECT_EQ(valueOf(map, 48), 3u);
    map.eraseIf([](Address, Address &) { return true; });
    EXPECT_TRUE(map.empty());
    EXPECT_EQ(map.find(48), nullptr);
}

TEST(AddressMap, ForgetsEverythingWhenCleared)
{
    AddressMap map;
    map.insertIfAbsent(8, 1);
    map.insertIfAbsent(1u << 20, 1);
    map.clear();
    EXPECT_TRUE(map.empty());
    EXPECT_EQ(map.find(8), nullptr);
    EXPECT_TRUE(map.insertIfAbsent(8, 2));
    EXPECT_EQ(valueOf(map, 8), 2u);
}

} // namespace
} // namespace kvr::netlistdb
