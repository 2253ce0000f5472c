#include "ClockTest.h"
#include "RandomNetlists.h"
#include "tests/support/RandomInputs.h"

#include <algorithm>
#include <functional>

namespace clock_test {
namespace {

using Pair = DesignDatabase::InstanceNet;

/// The items of one tree.
class Items {
  public:
    Items(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE type)
    {
        std::set<const IVDBNetlist *> modules;
        for (IVDBInstance *instance : treeOf(database.getRoot(type))) {
            modules.insert(instance->getModule());
            m_instances.insert(instance);
            for (const IVDBNet *net : netsOf(instance)) {
                m_nets.insert(net);
            }
        }
        Verific::Set hierarchy(Verific::POINTER_HASH, 2);
        database.workingCopy(type)->Hierarchy(hierarchy, 1);
        m_complete = hierarchy.Size() == modules.size();
    }
    bool has(const IVDBInstance *instance) const { return m_instances.count(instance) != 0; }
    bool has(const Pair &pair) const { return has(pair.first) && m_nets.count(pair.second) != 0; }
    /// Whether an item of either kind lies at the address.
    bool covers(const void *address) const { return m_nets.count(address) != 0 || m_instances.count(address) != 0; }
    /// False when modules were built that no instance of the tree shows.
    bool complete() const { return m_complete; }

  private:
    std::set<const void *> m_instances;
    std::set<const void *> m_nets;
    bool m_complete = false;
};

std::vector<Pair> allPairs(const DesignDatabase &database)
{
    std::vector<Pair> all;
    for (const auto &entry : database.drivingClockCache()) {
        const std::vector<Pair> pairs = entry.second.pairs();
        all.insert(all.end(), pairs.begin(), pairs.end());
    }
    return all;
}

/// How often an import took addresses that the caches still held.
struct Reuse {
    unsigned pairs = 0;
    unsigned instances = 0;
    unsigned kept = 0; ///< pairs at other addresses
};

/// What the caches hold, compared after an import with what they held before.
class CachesBefore {
  public:
    explicit CachesBefore(const DesignDatabase &database)
        : m_pairs(allPairs(database)), m_answers(database.elaboratedInstanceCache())
    {
    }

    /// Entries that lead to the new items are gone, the others are still there.
    void compare(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE type, Reuse &reuse) const
    {
        const Items fresh(database, type);
        for (const Pair &pair : m_pairs) {
            const bool cached = database.findCachedResult(pair) != database.drivingClockCache().end();
            if (fresh.has(pair)) {
                ++reuse.pairs;
                ASSERT_FALSE(cached);
            } else if (!fresh.covers(pair.first) && !fresh.covers(pair.second) && fresh.complete()) {
                ++reuse.kept;
                ASSERT_TRUE(cached);
            }
        }
        for (const Pair &pair : allPairs(database)) {
            ASSERT_FALSE(fresh.has(pair));
        }
        const auto answers = database.elaboratedInstanceCache();
        for (const auto &answer : m_answers) {
            const bool cached = std::find(answers.begin(), answers.end(), answer) != answers.end();
            reuse.instances += fresh.has(answer.first);
            ASSERT_EQ(cached, !fresh.has(answer.first));
        }
        ASSERT_LE(answers.size(), m_answers.size());
    }

  private:
    std::vector<Pair> m_pairs;
    std::vector<std::pair<IVDBInstance *, IClockDomain *>> m_answers;
};

/// The clock of every net, in the order of the tree.
std::vector<std::string> clocksOfAllNets(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE type)
{
    std::vector<std::string> lines;
    for (IVDBInstance *instance : treeOf(database.getRoot(type))) {
        for (IVDBNet *net : netsOf(instance)) {
            const IClockDomain *domain = database.findDrivingClockDomains(instance, net, type);
            lines.push_back(nameOf(Pair(instance, net)) + " -> " + nameOf(domain));
            if (domain != nullptr) {
                const std::vector<IClockDomain *> domains = database.listAllClockDomains(type);
                EXPECT_NE(std::find(domains.begin(), domains.end(), domain), domains.end()) << "a record long gone";
            }
        }
    }
    return lines;
}

bool import(DesignDatabase &database, Verific::Netlist *netlist, IDesignDatabase::SOURCE_TYPE type)
{
    return type == POST_MAP ? database.parsePostMapNetlist(netlist) : database.parseElaboratedNetlist(netlist);
}

TEST(Reimport, AnswersLikeAFreshDatabaseAfterManyResetsAndImports)
{
    Reuse reuse;
    for (unsigned seed = 1; seed <= testsupport::randomInputs(150); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const testsupport::LibsetGuard guard;
        RandomNetlists random(seed);
        Verific::Netlist *const postMap[] = {random.postMap(), random.postMap()};
        Verific::Netlist *const elaborated[] = {random.elaborated(), random.elaborated()};
        // A database that goes takes the library set with it, so all of them go at the end.
        std::vector<std::unique_ptr<DesignDatabase>> fresh;
        DesignDatabase database(true);
        for (int round = 0; round < 10; ++round) {
            const auto type = random.chance(50) ? POST_MAP : ELABORATED;
            const unsigned which = random.below(2);
            Verific::Netlist *const netlist = type == POST_MAP ? postMap[which] : elaborated[which];
            if (random.chance(70)) {
                const std::vector<Pair> pairs = allPairs(database);
                const auto answers = database.elaboratedInstanceCache();
                database.reset(type);
                ASSERT_EQ(allPairs(database), pairs) << "a reset leaves the caches";
                ASSERT_EQ(database.elaboratedInstanceCache(), answers) << "a reset leaves the caches";
            }
            const bool replaces = database.isSourceLoaded(type);
            const CachesBefore before(database);
            const bool complete = import(database, netlist, type);
            ASSERT_NO_FATAL_FAILURE(before.compare(database, type, reuse));

            const std::vector<std::string> found = clocksOfAllNets(database, type);
            if (replaces) {
                continue; // nets of shared modules lead to the items that were made first
            }
            fresh.push_back(std::make_unique<DesignDatabase>(true));
            ASSERT_EQ(import(*fresh.back(), netlist, type), complete);
            ASSERT_EQ(found, clocksOfAllNets(*fresh.back(), type));
        }
    }
    EXPECT_GT(reuse.pairs, 0U) << "no address came back: nothing was shown";
    EXPECT_GT(reuse.instances, 0U) << "no address came back: nothing was shown";
    EXPECT_GT(reuse.kept, 0U);
}

TEST(Reimport, WithoutSourceNetlistsAnswersNothingEveryTime)
{
    for (unsigned seed = 1; seed <= 20; ++seed) {
        const testsupport::LibsetGuard guard;
        RandomNetlists random(seed);
        Verific::Netlist *const postMap = random.postMap();
        Verific::Netlist *const elaborated = random.elaborated();
        DesignDatabase database(false);
        for (int round = 0; round < 4; ++round) {
            for (const auto type : {POST_MAP, ELABORATED}) {
                import(database, type == POST_MAP ? postMap : elaborated, type);
                for (const std::string &line : clocksOfAllNets(database, type)) {
                    ASSERT_NE(line.find(" -> none"), std::string::npos);
                }
                ASSERT_TRUE(database.listAllClockDomains(type).empty());
                if (random.chance(70)) {
                    ASSERT_TRUE(database.reset(type));
                }
            }
        }
        EXPECT_TRUE(database.drivingClockCache().empty());
        EXPECT_TRUE(database.elaboratedInstanceCache().empty());
    }
}

class ReimportOfText : public ClockTest {};

constexpr const char *POST_MAP_TEXT = R"(
    module flat(in clk, d, out q)
        ff: KVR_FF(C=clk, D=d, Q=q)
    end)";
constexpr const char *ELABORATED_TEXT = R"(
    register DFF(in clk, d, out q) clock=clk end
    operator INV(in a, out o) end
    module deep(in clk, d, out y)
        r: DFF(clk=clk, d=d, q=q)
        i: INV(a=q, o=y)
    end)";

TEST_F(ReimportOfText, OfOneSourceLeavesTheAnswersOfTheOther)
{
    postMap(POST_MAP_TEXT);
    Verific::Netlist *const deep = testsupport::netlistFromText(ELABORATED_TEXT);
    database->parseElaboratedNetlist(deep);
    clockOf("", "q", POST_MAP);
    clockOf("", "d", POST_MAP);
    const std::vector<Pair> pairs = allPairs(*database);
    ASSERT_EQ(pairs.size(), 2U);
    for (int round = 0; round < 5; ++round) {
        database->reset(ELABORATED);
        database->parseElaboratedNetlist(deep);
        EXPECT_EQ(allPairs(*database), pairs);
        EXPECT_EQ(clockOf("", "y", ELABORATED), "clk");
    }
    EXPECT_EQ(clockOf("", "q", POST_MAP), "clk");
}

TEST_F(ReimportOfText, WithoutResetKeepsTheAnswersOfTheTreeItReplaced)
{
    Verific::Netlist *const flat = testsupport::netlistFromText(POST_MAP_TEXT);
    Verific::Netlist *const deep = testsupport::netlistFromText(ELABORATED_TEXT);
    database->parsePostMapNetlist(flat);
    database->parseElaboratedNetlist(deep);
    clockOf("", "q", POST_MAP);
    clockOf("", "y", ELABORATED);
    const std::vector<Pair> pairs = allPairs(*database);
    const auto answers = database->elaboratedInstanceCache();
    IVDBInstance *const oldRoot = database->getRoot(ELABORATED);
    database->parsePostMapNetlist(flat);
    database->parseElaboratedNetlist(deep);
    EXPECT_EQ(allPairs(*database), pairs);
    EXPECT_EQ(database->elaboratedInstanceCache(), answers);
    EXPECT_EQ(nameOf(database->findDrivingClockDomains(oldRoot, netOf(oldRoot, "y"), ELABORATED)), "clk");
    EXPECT_EQ(clockOf("", "y", ELABORATED), "clk");
    EXPECT_EQ(clockOf("", "q", POST_MAP), "clk");
    EXPECT_EQ(clocks(POST_MAP), (Names{"clk", "clk"}));
    ASSERT_TRUE(database->reset(POST_MAP));
    EXPECT_EQ(clocks(POST_MAP), Names{});
}

} // namespace
} // namespace clock_test
