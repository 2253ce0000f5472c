#include "analysis/PointerIndex.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <random>
#include <vector>

namespace kvr::netlistdb::analysis {
namespace {

/// Addresses alone: nothing is ever looked at behind them.
const char *at(std::uintptr_t address)
{
    return reinterpret_cast<const char *>(address);
}

/// The first place of every object, as a plain map tells it.
std::map<const char *, std::uint32_t> placesOf(const std::vector<const char *> &objects)
{
    std::map<const char *, std::uint32_t> places;
    for (std::uint32_t place = 0; place < objects.size(); ++place) {
        if (objects[place] != nullptr) {
            places.emplace(objects[place], place);
        }
    }
    return places;
}

/// Asks for every object, and for its neighbours, one by one and all together.
void compare(const PointerIndex &index, const std::vector<const char *> &objects)
{
    const std::map<const char *, std::uint32_t> places = placesOf(objects);
    std::vector<const char *> wanted;
    for (const char *object : objects) {
        for (const std::ptrdiff_t step : {-64, -16, -8, -1, 0, 1, 7, 8, 16, 4096}) {
            wanted.push_back(at(reinterpret_cast<std::uintptr_t>(object) + static_cast<std::uintptr_t>(step)));
        }
    }
    const auto placeOf = [&](const char *object) {
        const auto found = places.find(object);
        return found != places.end() ? found->second : NONE;
    };
    for (const char *object : wanted) {
        ASSERT_EQ(index.find(object), placeOf(object)) << static_cast<const void *>(object);
    }
    std::size_t next = 0;
    index.findAll(wanted, [&](std::size_t number, std::uint32_t place) {
        ASSERT_EQ(number, next++);
        ASSERT_EQ(place, placeOf(wanted[number])) << static_cast<const void *>(wanted[number]);
    });
    EXPECT_EQ(next, wanted.size());
}

TEST(PointerIndex, FindsNothingBeforeItIsBuilt)
{
    const PointerIndex index;
    EXPECT_EQ(index.find(at(4096)), NONE);
    EXPECT_EQ(index.find(nullptr), NONE);
    index.findAll(std::vector<const char *>{at(4096)},
                  [](std::size_t, std::uint32_t place) { EXPECT_EQ(place, NONE); });
}

TEST(PointerIndex, LeavesOutNullPointers)
{
    PointerIndex index;
    index.build(std::vector<const char *>{nullptr, at(64), nullptr});
    EXPECT_EQ(index.find(nullptr), NONE);
    EXPECT_EQ(index.find(at(64)), 1U);
    index.build(std::vector<const char *>(3, nullptr));
    EXPECT_EQ(index.find(nullptr), NONE);
    EXPECT_EQ(index.find(at(64)), NONE);
}

TEST(PointerIndex, TakesTheFirstPlaceOfAnObjectThatOccursTwice)
{
    PointerIndex index;
    index.build(std::vector<const char *>{at(128), at(64), at(64), at(128)});
    EXPECT_EQ(index.find(at(64)), 1U);
    EXPECT_EQ(index.find(at(128)), 0U);
}

TEST(PointerIndex, ForgetsWhatWasIndexedBefore)
{
    PointerIndex index;
    index.build(std::vector<const char *>{at(64), at(1 << 20)});
    index.build(std::vector<const char *>{at(128)});
    EXPECT_EQ(index.find(at(64)), NONE);
    EXPECT_EQ(index.find(at(1 << 20)), NONE);
    EXPECT_EQ(index.find(at(128)), 0U);
}

TEST(PointerIndex, FindsWhatAMapFinds)
{
    std::mt19937_64 random(20);
    for (int round = 0; round < 400; ++round) {
        // Close together and far apart, at addresses that have up to 7 low bits in common.
        const unsigned shift = static_cast<unsigned>(random() % 8);
        const std::uintptr_t spread = std::uintptr_t{1} << (4 + random() % 24);
        const std::uintptr_t base = (random() % 2 == 0 ? std::uintptr_t{1} << 46 : 1) << shift;
        std::vector<const char *> objects;
        for (std::size_t count = random() % 300; count > 0; --count) {
            objects.push_back(random() % 16 == 0 ? nullptr : at(base + (random() % spread << shift)));
        }
        PointerIndex index;
        index.build(objects);
        compare(index, objects);
    }
}

TEST(PointerIndex, FindsTheLastAddressesThereAre)
{
    const std::vector<const char *> objects = {at(UINTPTR_MAX), at(UINTPTR_MAX - 1), at(1), at(UINTPTR_MAX / 2)};
    PointerIndex index;
    index.build(objects);
    compare(index, objects);
}

} // namespace
} // namespace kvr::netlistdb::analysis
