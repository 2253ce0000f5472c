#include "clock/PairCache.h"

#include <gtest/gtest.h>

#include <random>

namespace kvr::netlistdb {
namespace {

template <typename Item> Item *at(std::uintptr_t address)
{
    return reinterpret_cast<Item *>(address);
}

PairCache::Sets::const_iterator byWalking(const PairCache &cache, const InstanceNet &pair)
{
    auto position = cache.sets().begin();
    while (position != cache.sets().end() && !position->second.contains(pair)) {
        ++position;
    }
    return position;
}

TEST(PairCache, FindsTheDomainThatWalkingTheSetsFinds)
{
    std::mt19937 random(1);
    PairCache cache;
    const auto aPair = [&random] {
        return InstanceNet(at<IVDBInstance>(random() % 5 * 16), at<IVDBNet>(random() % 40 * 4));
    };
    for (int step = 0; step < 20'000; ++step) {
        if (random() % 100 == 0) {
            cache.forget(at<IVDBInstance>(random() % 5 * 16));
        } else if (random() % 4 == 0) {
            cache.add(at<IClockDomain>(random() % 6 * 8), aPair()); // 0: no clock
        }
        const InstanceNet pair = aPair();
        ASSERT_TRUE(cache.find(pair) == byWalking(cache, pair)) << step;
    }
}

} // namespace
} // namespace kvr::netlistdb
