#include "ClockTest.h"
#include "RandomNetlists.h"
#include "ReferenceClocks.h"
#include "tests/support/RandomInputs.h"

#include <algorithm>

namespace clock_test {
namespace {

using Pair = DesignDatabase::InstanceNet;

/// What a run of random queries came across, to see that it was worth its while.
struct Coverage {
    unsigned queries = 0;
    unsigned postMapAnswers = 0;
    unsigned elaboratedAnswers = 0;
    unsigned elaboratedRecorded = 0;
    unsigned nullRecorded = 0;
};

ReferenceClocks::PairCache pairsOf(const DesignDatabase &database)
{
    ReferenceClocks::PairCache cache;
    for (const auto &[domain, pairs] : database.drivingClockCache()) {
        const std::vector<Pair> list = pairs.pairs();
        cache[domain] = std::set<Pair>(list.begin(), list.end());
    }
    return cache;
}

ReferenceClocks::InstanceCache answersOf(const DesignDatabase &database)
{
    const auto list = database.elaboratedInstanceCache();
    return {list.begin(), list.end()};
}

std::vector<Pair> recordedPairs(const DesignDatabase &database, IDesignDatabase::SOURCE_TYPE type)
{
    std::vector<Pair> pairs;
    for (const IClockDomain *record : database.listAllClockDomains(type)) {
        pairs.emplace_back(record->getInstance(), record->getNet());
        const std::string path = record->getInstance()->getPath();
        EXPECT_EQ(record->getName(), (path.empty() ? "" : path + '/') + record->getNet()->getName());
    }
    std::sort(pairs.begin(), pairs.end());
    return pairs;
}

class Comparison {
  public:
    explicit Comparison(unsigned seed) : m_random(seed)
    {
        Verific::Netlist *const postMap = m_random.postMap();
        Verific::Netlist *const elaborated = m_random.elaborated();
        // At times one netlist is imported as both, so that both trees stand for the same netlist objects.
        m_database.parsePostMapNetlist(m_random.chance(10) ? elaborated : postMap);
        m_database.parseElaboratedNetlist(m_random.chance(10) ? postMap : elaborated);
        for (const unsigned tree : {0U, 1U}) {
            for (IVDBInstance *instance : treeOf(m_database.getRoot(tree == 0 ? ELABORATED : POST_MAP))) {
                if (!netsOf(instance).empty()) {
                    m_instances[tree].push_back(instance);
                }
            }
        }
    }

    void compareRecords()
    {
        const std::set<Pair> postMap = m_reference.postMapClocks();
        ASSERT_EQ(recordedPairs(m_database, POST_MAP), std::vector<Pair>(postMap.begin(), postMap.end()));
        const std::set<Pair> elaborated = m_reference.elaboratedClocks();
        ASSERT_EQ(recordedPairs(m_database, ELABORATED), std::vector<Pair>(elaborated.begin(), elaborated.end()));
    }

    void compareQuery(Coverage &coverage)
    {
        const bool elaborated = m_random.chance(50);
        const bool foreign = m_random.chance(6);
        IVDBInstance *const instance = anInstance(elaborated != foreign ? 0 : 1);
        const std::vector<IVDBNet *> nets = netsOf(m_random.chance(92) ? instance : anInstance(m_random.below(2)));
        IVDBNet *const net = nets[m_random.below(static_cast<unsigned>(nets.size()))];
        SCOPED_TRACE((elaborated ? "elaborated " : "post-map ") + nameOf(Pair(instance, net)));
        const auto type = elaborated ? ELABORATED : POST_MAP;
        IClockDomain *const expected =
            elaborated ? m_reference.findElaborated(instance, net) : m_reference.findPostMap(instance, net);
        IClockDomain *const found = m_database.findDrivingClockDomains(instance, net, type);
        ASSERT_EQ(found, expected) << nameOf(found) << " instead of " << nameOf(expected);
        ASSERT_EQ(pairsOf(m_database), m_reference.pairCache());
        ASSERT_EQ(answersOf(m_database), m_reference.instanceCache());
        for (const auto &[domain, pairs] : m_reference.pairCache()) {
            for (const Pair &pair : pairs) {
                const auto first = std::find_if(m_reference.pairCache().begin(), m_reference.pairCache().end(),
                                                [&](const auto &entry) { return entry.second.count(pair) != 0; });
                ASSERT_EQ(m_database.findCachedResult(pair)->first, first->first);
                ASSERT_EQ(m_database.isCached(pair), first->first);
            }
        }

        ++coverage.queries;
        if (found != nullptr) {
            ++(elaborated ? coverage.elaboratedAnswers : coverage.postMapAnswers);
        }
    }

    void compareClimb()
    {
        IVDBInstance *const instance = anInstance(0);
        const std::vector<IVDBNet *> nets = netsOf(instance);
        IVDBNet *const net = nets[m_random.below(static_cast<unsigned>(nets.size()))];
        IVDBInstance *const stop = m_random.chance(60)   ? m_database.getRoot(ELABORATED)
                                   : m_random.chance(50) ? nullptr
                                                         : anInstance(0);
        ASSERT_EQ(m_database.getRootClk(instance, net, stop), m_reference.rootClock({instance, net}, stop));
    }

    void count(Coverage &coverage) const
    {
        for (const auto &[instance, domain] : m_database.elaboratedInstanceCache()) {
            ++(domain != nullptr ? coverage.elaboratedRecorded : coverage.nullRecorded);
        }
    }

  private:
    /// An instance with nets, the root more often than others.
    IVDBInstance *anInstance(unsigned tree)
    {
        if (m_random.chance(tree == 0 ? 20 : 50)) {
            return m_instances[tree].front();
        }
        return m_instances[tree][m_random.below(static_cast<unsigned>(m_instances[tree].size()))];
    }

    testsupport::LibsetGuard m_guard;
    RandomNetlists m_random;
    DesignDatabase m_database{true};
    ReferenceClocks m_reference{m_database};
    std::vector<IVDBInstance *> m_instances[2];
};

TEST(ClocksAgainstReference, GiveTheSameRecordsAnswersAndCachesOnRandomNetlists)
{
    Coverage coverage;
    for (unsigned seed = 1; seed <= testsupport::randomInputs(1500) && !::testing::Test::HasFatalFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Comparison comparison(seed);
        comparison.compareRecords();
        for (int query = 0; query < 40 && !::testing::Test::HasFatalFailure(); ++query) {
            comparison.compareQuery(coverage);
            comparison.compareClimb();
        }
        comparison.count(coverage);
    }
    // A generator that no longer reaches anything would pass unnoticed.
    EXPECT_GT(coverage.postMapAnswers, coverage.queries / 20);
    EXPECT_GT(coverage.elaboratedAnswers, coverage.queries / 20);
    EXPECT_GT(coverage.elaboratedRecorded, testsupport::randomInputs(1000));
    EXPECT_GT(coverage.nullRecorded, testsupport::randomInputs(1000));
    RecordProperty("postMapAnswers", static_cast<int>(coverage.postMapAnswers));
    RecordProperty("elaboratedAnswers", static_cast<int>(coverage.elaboratedAnswers));
}

} // namespace
} // namespace clock_test
