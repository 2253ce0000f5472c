#include <netlistdb/InstanceNetSet.h>

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace {

using kvr::netlistdb::InstanceNetSet;
using kvr::netlistdb::IVDBInstance;
using kvr::netlistdb::IVDBNet;
using Pair = InstanceNetSet::value_type;

Pair pairAt(std::uintptr_t instance, std::uintptr_t net)
{
    return {reinterpret_cast<IVDBInstance *>(instance), reinterpret_cast<IVDBNet *>(net)};
}

TEST(InstanceNetSet, OrdersByInstanceThenByNet)
{
    InstanceNetSet set;
    for (const Pair &pair : {pairAt(0x20, 0x10), pairAt(0x10, 0x9000), pairAt(0x20, 0x8), pairAt(0x10, 0x1008)}) {
        EXPECT_TRUE(set.insert(pair));
    }
    const std::vector<Pair> expected{pairAt(0x10, 0x1008), pairAt(0x10, 0x9000), pairAt(0x20, 0x8), pairAt(0x20, 0x10)};
    EXPECT_EQ(set.pairs(), expected);
}

TEST(InstanceNetSet, TellsWhetherAnInsertedPairIsNew)
{
    InstanceNetSet set;
    EXPECT_TRUE(set.insert(pairAt(8, 16)));
    EXPECT_FALSE(set.insert(pairAt(8, 16)));
    EXPECT_TRUE(set.insert(pairAt(16, 8)));
    EXPECT_EQ(set.size(), 2U);
}

TEST(InstanceNetSet, HoldsNullInstancesAndNullNets)
{
    InstanceNetSet set;
    EXPECT_FALSE(set.contains(pairAt(0, 0)));
    EXPECT_TRUE(set.insert(pairAt(0, 0)));
    EXPECT_TRUE(set.insert(pairAt(8, 0)));
    EXPECT_TRUE(set.insert(pairAt(0, 8)));
    EXPECT_TRUE(set.contains(pairAt(0, 0)));
    EXPECT_FALSE(set.contains(pairAt(8, 8)));
    EXPECT_EQ(set.pairs(), (std::vector<Pair>{pairAt(0, 0), pairAt(0, 8), pairAt(8, 0)}));
}

TEST(InstanceNetSet, ForgetsErasedPairs)
{
    InstanceNetSet set;
    set.insert(pairAt(8, 8));
    set.insert(pairAt(8, 16));
    EXPECT_FALSE(set.erase(pairAt(16, 8)));
    EXPECT_FALSE(set.erase(pairAt(8, 24)));
    EXPECT_FALSE(set.erase(pairAt(8, 0x10008)));
    EXPECT_TRUE(set.erase(pairAt(8, 8)));
    EXPECT_FALSE(set.erase(pairAt(8, 8)));
    EXPECT_EQ(set.pairs(), (std::vector<Pair>{pairAt(8, 16)}));
    EXPECT_TRUE(set.erase(pairAt(8, 16)));
    EXPECT_TRUE(set.empty());
    EXPECT_TRUE(set.pairs().empty());
}

TEST(InstanceNetSet, TellsNeighbouringAddressesApartWhateverTheirAlignment)
{
    InstanceNetSet set;
    for (std::uintptr_t net = 0x1000; net < 0x1010; ++net) {
        EXPECT_FALSE(set.contains(pairAt(8, net))) << net;
        EXPECT_TRUE(set.insert(pairAt(8, net))) << net;
    }
    EXPECT_EQ(set.size(), 16U);
    EXPECT_TRUE(set.erase(pairAt(8, 0x1003)));
    EXPECT_TRUE(set.contains(pairAt(8, 0x1000)));
    EXPECT_EQ(set.count(pairAt(8, 0x1003)), 0U);
    EXPECT_EQ(set.count(pairAt(8, 0x1004)), 1U);
}

TEST(InstanceNetSet, IsWalkedLikeAnOrderedSet)
{
    InstanceNetSet set;
    EXPECT_TRUE(set.begin() == set.end());
    EXPECT_TRUE(set.find(pairAt(8, 8)) == set.end());
    const std::uintptr_t highest = ~std::uintptr_t{0};
    const std::vector<Pair> pairs{pairAt(0, 0),       pairAt(0, highest), pairAt(3, 1),     pairAt(8, 7),
                                  pairAt(8, 8),       pairAt(8, 9),       pairAt(8, 0xfff), pairAt(8, 0x1000),
                                  pairAt(8, highest), pairAt(highest, 5)};
    for (auto pair = pairs.rbegin(); pair != pairs.rend(); ++pair) {
        set.insert(*pair);
    }
    std::vector<Pair> walked;
    for (const Pair &pair : set) {
        walked.push_back(pair);
    }
    EXPECT_EQ(walked, pairs);
    EXPECT_EQ(std::vector<Pair>(set.find(pairAt(8, 9)), set.end()), std::vector<Pair>(pairs.begin() + 5, pairs.end()));
    auto position = set.find(pairAt(8, 7));
    EXPECT_EQ((position++)->second, pairAt(8, 7).second);
    EXPECT_EQ(*position, pairAt(8, 8));
}

TEST(InstanceNetSet, IsWalkedOnAfterTheCurrentPairHasGone)
{
    InstanceNetSet set;
    for (std::uintptr_t net = 1; net < 40; ++net) {
        set.insert(pairAt(8 * (net % 3), net));
    }
    std::size_t steps = 0;
    for (const Pair &pair : set) {
        EXPECT_TRUE(set.erase(pair));
        ++steps;
    }
    EXPECT_EQ(steps, 39U);
    EXPECT_TRUE(set.empty());
}

TEST(InstanceNetSet, ForgetsAllPairsOfAnInstance)
{
    InstanceNetSet set;
    for (std::uintptr_t net = 0; net < 5000; net += 3) {
        set.insert(pairAt(8, net));
        set.insert(pairAt(16, net));
    }
    const std::size_t half = set.size() / 2;
    set.eraseInstance(pairAt(24, 0).first);
    EXPECT_EQ(set.size(), 2 * half);
    set.eraseInstance(pairAt(8, 0).first);
    EXPECT_EQ(set.size(), half);
    EXPECT_EQ(set.begin()->first, pairAt(16, 0).first);
}

/// Addresses as an allocator gives them: runs of neighbours on a few pages, far apart, and the largest ones; and a few
/// that no allocator gives.
std::uintptr_t anAddress(std::mt19937 &random)
{
    static constexpr std::uintptr_t BASES[] = {0, 0x1000, 0x7f0000000000, 0x7f0000000ff0, 0xfffffffffffff000};
    const std::uintptr_t odd = random() % 4 == 0 ? random() % 8 : 0;
    return BASES[random() % 5] + 8 * (random() % (random() % 4 == 0 ? 512 : 12)) + odd;
}

TEST(InstanceNetSet, HoldsWhatAnOrderedSetOfPairsHolds)
{
    for (unsigned seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        InstanceNetSet set;
        std::set<Pair> reference;
        for (int step = 0; step < 300; ++step) {
            const Pair pair = pairAt(8 * (random() % 4), anAddress(random));
            switch (random() % 3) {
            case 0:
                ASSERT_EQ(set.insert(pair), reference.insert(pair).second);
                break;
            case 1:
                ASSERT_EQ(set.erase(pair), reference.erase(pair) == 1);
                break;
            default:
                ASSERT_EQ(set.contains(pair), reference.count(pair) == 1);
            }
            ASSERT_EQ(set.size(), reference.size());
            ASSERT_EQ(set.empty(), reference.empty());
        }
        ASSERT_EQ(set.pairs(), std::vector<Pair>(reference.begin(), reference.end()));
        for (const Pair &pair : reference) {
            const auto position = set.find(pair);
            ASSERT_TRUE(position != set.end());
            ASSERT_EQ(*position, pair);
        }
    }
}

} // namespace
