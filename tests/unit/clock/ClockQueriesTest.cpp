#include "ClockTest.h"

#include <algorithm>
#include <cstdint>
#include <functional>

namespace clock_test {
namespace {

using Pair = DesignDatabase::InstanceNet;

class ClockQueries : public ClockTest {
  protected:
    static Pair pair(std::uintptr_t net) { return {nullptr, reinterpret_cast<IVDBNet *>(net * 8)}; }
    /// A key of the cache: never looked into.
    static IClockDomain *domain(std::uintptr_t address) { return reinterpret_cast<IClockDomain *>(address * 8); }
};

constexpr const char *FLIP_FLOP = R"(
    module top(in clk, d, out q)
        ff: KVR_FF(C=clk, D=d, Q=q)
    end)";
constexpr const char *REGISTER = R"(
    register DFF(in clk, d, out q) clock=clk end
    module top(in clk, d, out q)
        r: DFF(clk=clk, d=d, q=q)
    end)";

TEST_F(ClockQueries, CacheIsEmptyAtFirst)
{
    EXPECT_TRUE(database->drivingClockCache().empty());
    EXPECT_TRUE(database->elaboratedInstanceCache().empty());
    EXPECT_EQ(database->isCached(pair(1)), nullptr);
    EXPECT_TRUE(database->findCachedResult(pair(1)) == database->drivingClockCache().end());
}

TEST_F(ClockQueries, CacheTellsAPairThatReachesNoClockFromAnUnknownOneByPositionOnly)
{
    database->addCache(nullptr, pair(1));
    EXPECT_EQ(database->isCached(pair(1)), nullptr);
    EXPECT_EQ(database->isCached(pair(2)), nullptr);
    const auto found = database->findCachedResult(pair(1));
    ASSERT_TRUE(found != database->drivingClockCache().end());
    EXPECT_EQ(found->first, nullptr);
    EXPECT_TRUE(database->findCachedResult(pair(2)) == database->drivingClockCache().end());
}

TEST_F(ClockQueries, CacheAnswersTheFirstDomainInAddressOrderThatHoldsAPair)
{
    database->addCache(domain(3), pair(1));
    EXPECT_EQ(database->isCached(pair(1)), domain(3));
    database->addCache(domain(5), pair(1));
    EXPECT_EQ(database->isCached(pair(1)), domain(3));
    database->addCache(domain(2), pair(1));
    EXPECT_EQ(database->isCached(pair(1)), domain(2));
    EXPECT_EQ(database->findCachedResult(pair(1))->first, domain(2));
    EXPECT_TRUE(database->findCachedResult(pair(1))->second.contains(pair(1)));
}

TEST_F(ClockQueries, CacheTakesAnyPointerValues)
{
    const auto at = [](std::uintptr_t instance, std::uintptr_t net) {
        return Pair(reinterpret_cast<IVDBInstance *>(instance), reinterpret_cast<IVDBNet *>(net));
    };
    const auto answer = [](std::uintptr_t address) { return reinterpret_cast<IClockDomain *>(address); };
    for (std::uintptr_t offset = 0; offset < 16; ++offset) {
        database->addCache(answer(0x100 + offset), at(0x2000 + offset, 0x3000 + offset));
    }
    for (std::uintptr_t offset = 0; offset < 16; ++offset) {
        EXPECT_EQ(database->isCached(at(0x2000 + offset, 0x3000 + offset)), answer(0x100 + offset));
        EXPECT_EQ(database->findCachedResult(at(0x2000 + offset, 0x3000 + (offset ^ 1))),
                  const_cast<DesignDatabase::DrivingClockCache &>(database->drivingClockCache()).end());
        const auto &pairs = database->drivingClockCache().at(answer(0x100 + offset));
        EXPECT_EQ(pairs.count(at(0x2000 + offset, 0x3000 + offset)), 1U);
        EXPECT_EQ(std::vector<Pair>(pairs.begin(), pairs.end()), pairs.pairs());
    }
}

TEST_F(ClockQueries, NullWinsOverEveryDomainOfThatPair)
{
    database->addCache(domain(1), pair(1));
    database->addCache(domain(1), pair(2));
    database->addCache(nullptr, pair(1));
    const auto found = database->findCachedResult(pair(1));
    ASSERT_TRUE(found != database->drivingClockCache().end());
    EXPECT_EQ(found->first, nullptr);
    EXPECT_EQ(database->isCached(pair(1)), nullptr);
    EXPECT_EQ(database->isCached(pair(2)), domain(1));
}

TEST_F(ClockQueries, CacheHoldsAPairUnderEveryDomainItWasAddedTo)
{
    database->addCache(domain(1), pair(1));
    database->addCache(domain(1), pair(1));
    database->addCache(nullptr, pair(1));
    database->addCache(domain(2), pair(3));
    const auto &cache = database->drivingClockCache();
    ASSERT_EQ(cache.size(), 3U);
    EXPECT_EQ(cache.at(nullptr).pairs(), std::vector<Pair>{pair(1)});
    EXPECT_EQ(cache.at(domain(1)).pairs(), std::vector<Pair>{pair(1)});
    EXPECT_EQ(cache.at(domain(2)).pairs(), std::vector<Pair>{pair(3)});
}

TEST_F(ClockQueries, CacheTellsInstancesOfOneNetApart)
{
    const Pair other{reinterpret_cast<IVDBInstance *>(8), pair(1).second};
    database->addCache(domain(1), pair(1));
    EXPECT_TRUE(database->findCachedResult(other) == database->drivingClockCache().end());
    database->addCache(domain(2), other);
    EXPECT_EQ(database->isCached(pair(1)), domain(1));
    EXPECT_EQ(database->isCached(other), domain(2));
}

TEST_F(ClockQueries, RecordIsFoundByItsVeryNetInstanceAndSource)
{
    elaborated(REGISTER);
    postMap("module flat(in clk2, d, out q) ff: KVR_FF(C=clk2, D=d, Q=q) end");
    for (const auto type : {ELABORATED, POST_MAP}) {
        const auto other = type == ELABORATED ? POST_MAP : ELABORATED;
        IVDBInstance *const root = database->getRoot(type);
        IClockDomain *const record = database->listAllClockDomains(type).at(0);
        EXPECT_EQ(record->getInstance(), root);
        EXPECT_EQ(database->getParsedClockDomain(root, record->getNet(), type), record);
        EXPECT_EQ(database->getParsedClockDomain(root, record->getNet(), other), nullptr);
        EXPECT_EQ(database->getParsedClockDomain(root->getSubInstances().at(0), record->getNet(), type), nullptr);
        EXPECT_EQ(database->getParsedClockDomain(root, netOf(root, "d"), type), nullptr);
        EXPECT_EQ(database->getParsedClockDomain(nullptr, record->getNet(), type), nullptr);
        EXPECT_EQ(database->getParsedClockDomain(root, nullptr, type), nullptr);
        for (const unsigned none : {0U, 3U, 255U}) {
            const auto unknown = static_cast<IDesignDatabase::SOURCE_TYPE>(none);
            EXPECT_EQ(database->getParsedClockDomain(root, record->getNet(), unknown), nullptr);
        }
    }
}

TEST_F(ClockQueries, FirstOfTwoRecordsOfOnePairInAddressOrderIsTheOneFound)
{
    postMap(FLIP_FLOP);
    elaborated("register R(in clk, out q) clock=clk end module e(in clk, out q) r: R(clk=clk, q=q) end");
    for (int round = 0; round < 8; ++round) {
        database->parseClkDomainPostMap(copyOf(POST_MAP));
        database->parseClkDomainElab(nullptr);
        for (const auto type : {ELABORATED, POST_MAP}) {
            const std::vector<IClockDomain *> records = database->listAllClockDomains(type);
            ASSERT_EQ(records.size(), static_cast<std::size_t>(round) + 2);
            EXPECT_EQ(database->getParsedClockDomain(database->getRoot(type), records[0]->getNet(), type), records[0]);
        }
    }
}

TEST_F(ClockQueries, ListHoldsEveryRecordInAddressOrder)
{
    postMap(R"(
        module top(in c1, c2, c3, d, out q1, q2, q3)
            f1: KVR_FF(C=c1, D=d, Q=q1)
            f2: KVR_FF(C=c2, D=d, Q=q2)
            f3: KVR_FF(C=c3, D=d, Q=q3)
        end)");
    const std::vector<IClockDomain *> records = database->listAllClockDomains(POST_MAP);
    EXPECT_EQ(clocks(POST_MAP), (Names{"c1", "c2", "c3"}));
    EXPECT_TRUE(std::is_sorted(records.begin(), records.end(), std::less<>()));
    EXPECT_EQ(records.capacity(), records.size());
    EXPECT_TRUE(database->listAllClockDomains(ELABORATED).empty());
    for (const unsigned none : {0U, 3U, 1000U}) {
        EXPECT_TRUE(database->listAllClockDomains(static_cast<IDesignDatabase::SOURCE_TYPE>(none)).empty());
    }
}

TEST_F(ClockQueries, ResetEmptiesTheTableOfItsSourceAndLeavesTheCaches)
{
    postMap(FLIP_FLOP);
    elaborated(R"(
        register DFF(in clk, d, out q) clock=clk end
        operator INV(in a, out o) end
        module e(in clk, d, out y)
            r: DFF(clk=clk, d=d, q=q)
            i: INV(a=q, o=y)
        end)");
    ASSERT_EQ(clockOf("", "q", POST_MAP), "clk");
    ASSERT_EQ(clockOf("", "d", POST_MAP), "none");
    ASSERT_EQ(clockOf("", "y", ELABORATED), "clk");
    IVDBInstance *const root = database->getRoot(POST_MAP);
    const Pair clocked{root, netOf(root, "q")};
    const Pair clockless{root, netOf(root, "d")};
    IClockDomain *const record = database->listAllClockDomains(POST_MAP).at(0);

    ASSERT_TRUE(database->reset(POST_MAP));
    EXPECT_TRUE(database->listAllClockDomains(POST_MAP).empty());
    EXPECT_EQ(clocks(ELABORATED), Names{"clk"});
    EXPECT_EQ(database->isCached(clocked), record);
    EXPECT_EQ(database->findCachedResult(clockless)->first, nullptr);
    EXPECT_EQ(database->drivingClockCache().size(), 2U);
    EXPECT_EQ(database->getParsedClockDomain(clocked.first, clocked.second, POST_MAP), nullptr);

    ASSERT_EQ(database->elaboratedInstanceCache().size(), 1U);
    const auto answers = database->elaboratedInstanceCache();
    ASSERT_TRUE(database->reset(ELABORATED));
    EXPECT_TRUE(database->listAllClockDomains(ELABORATED).empty());
    EXPECT_EQ(database->elaboratedInstanceCache(), answers);
}

TEST_F(ClockQueries, QueryOfAnUnknownSourceAnswersNothing)
{
    postMap(FLIP_FLOP);
    elaborated("register R(in clk, out q) clock=clk end module e(in clk, out q) r: R(clk=clk, q=q) end");
    IVDBInstance *const root = database->getRoot(POST_MAP);
    for (const unsigned none : {0U, 3U, 4U, 1000U}) {
        const auto type = static_cast<IDesignDatabase::SOURCE_TYPE>(none);
        EXPECT_EQ(database->findDrivingClockDomains(root, netOf(root, "q"), type), nullptr);
    }
    EXPECT_TRUE(database->drivingClockCache().empty());
    EXPECT_EQ(clockOf("", "q", POST_MAP), "clk");
    EXPECT_EQ(clockOf("", "q", ELABORATED), "clk");
}

TEST_F(ClockQueries, DatabaseWithoutSourceNetlistsAnswersNothingAndLeavesTheCachesAlone)
{
    database = std::make_unique<DesignDatabase>(false);
    database->parsePostMapNetlist(testsupport::netlistFromText(FLIP_FLOP));
    database->parseElaboratedNetlist(testsupport::netlistFromText(
        "register R(in clk, out q) clock=clk end module e(in clk, out q) r: R(clk=clk, q=q) end"));
    for (const auto type : {POST_MAP, ELABORATED}) {
        EXPECT_EQ(clockOf("", "q", type), "none");
        EXPECT_TRUE(database->listAllClockDomains(type).empty());
        EXPECT_EQ(database->findDrivingClockDomains(nullptr, nullptr, type), nullptr);
    }
    EXPECT_TRUE(database->drivingClockCache().empty());
    EXPECT_TRUE(database->elaboratedInstanceCache().empty());
}

TEST_F(ClockQueries, TracesRefuseNullArgumentsAndMissingRootsWithoutCachingAnything)
{
    Verific::Net verificNet("n");
    postMap(FLIP_FLOP);
    IVDBInstance *const root = database->getRoot(POST_MAP);
    IVDBNet *const net = netOf(root, "q");
    EXPECT_EQ(database->findDrivingClockDomainPostMap(nullptr, net), nullptr);
    EXPECT_EQ(database->findDrivingClockDomainPostMap(root, nullptr), nullptr);
    EXPECT_EQ(database->findDrivingClockDomainElab(nullptr, net), nullptr);
    EXPECT_EQ(database->findDrivingClockDomainElab(root, nullptr), nullptr);
    EXPECT_EQ(database->findDrivingClockDomainElab(root, net), nullptr) << "there is no elaborated root";
    DesignDatabase empty(true);
    EXPECT_EQ(empty.findDrivingClockDomainPostMap(root, net), nullptr) << "there is no post-map root";
    EXPECT_TRUE(empty.drivingClockCache().empty());
    EXPECT_TRUE(database->drivingClockCache().empty());
    EXPECT_TRUE(database->elaboratedInstanceCache().empty());
}

TEST_F(ClockQueries, QueryMakesNoRecord)
{
    postMap(FLIP_FLOP);
    const std::vector<IClockDomain *> before = database->listAllClockDomains(POST_MAP);
    clockOf("", "q", POST_MAP);
    clockOf("", "d", POST_MAP);
    EXPECT_EQ(database->listAllClockDomains(POST_MAP), before);
}

} // namespace
} // namespace clock_test
