// Random designs through random sequences of imports and resets of both sources, compared item by item with a plain
// reference after every step.

#include "netlist/VDBObjectPool.h"

#include "tests/property/ImportReference.h"
#include "tests/property/RandomNetlist.h"
#include "tests/support/LibsetGuard.h"
#include "tests/support/RandomInputs.h"

#include <netlistdb/netlistdb.h>

#include <DataBase.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>

namespace property_test {
namespace {

using namespace kvr::netlistdb;

/// Expects that each object of the tree's modules leads to a living item that leads back to it.
void expectPoolToLeadBack(const VDBObjectPool &pool, const IVDBInstance &instance)
{
    const IVDBNetlist *module = instance.getModule();
    const Verific::Netlist *netlist = pool.find(module);
    ASSERT_NE(netlist, nullptr);
    ASSERT_NE(pool.find(netlist), nullptr);
    ASSERT_EQ(pool.find(static_cast<const IVDBNetlist *>(pool.find(netlist))), netlist);
    Verific::MapIter objects;
    const Verific::Net *net = nullptr;
    FOREACH_NET_OF_NETLIST (netlist, objects, net) {
        IVDBNet *item = pool.find(net);
        ASSERT_NE(item, nullptr);
        ASSERT_EQ(pool.find(static_cast<const IVDBNet *>(item)), net);
        ASSERT_EQ(item->getName(), net->Name() != nullptr ? net->Name() : "");
    }
    std::size_t at = 0;
    const Verific::Port *port = nullptr;
    FOREACH_PORT_OF_NETLIST (netlist, objects, port) {
        ASSERT_NE(pool.find(port), nullptr);
        ASSERT_EQ(pool.find(port), pool.find(netlist)->getPorts()[at++]);
    }
    for (const IVDBInstance *child : instance.getSubInstances()) {
        expectPoolToLeadBack(pool, *child);
    }
}

/// The first line in which the texts differ, of each; empty when they are the same.
std::string firstDifference(const std::string &actual, const std::string &expected)
{
    std::istringstream actualLines(actual);
    std::istringstream expectedLines(expected);
    for (;;) {
        std::string actualLine;
        std::string expectedLine;
        const bool moreActual = static_cast<bool>(std::getline(actualLines, actualLine));
        const bool moreExpected = static_cast<bool>(std::getline(expectedLines, expectedLine));
        if (moreActual != moreExpected || actualLine != expectedLine) {
            return "actual:   " + actualLine + "\nexpected: " + expectedLine;
        }
        if (!moreActual) {
            return "";
        }
    }
}

/// One database, and what its two sources should hold.
class Session {
  public:
    Session(bool keep, const RandomDesign &design) : m_keep(keep), m_design(design), m_database(keep) {}

    void import(IDesignDatabase::SOURCE_TYPE type, std::size_t top)
    {
        Verific::Netlist *source = m_design.tops[top];
        const bool unfold = type == IDesignDatabase::SOURCE_ELABORATED;
        const TreeDescription expected = expectedTree(source, source, unfold, false);
        bool threw = false;
        bool answer = false;
        try {
            answer = unfold ? m_database.parseElaboratedNetlist(source) : m_database.parsePostMapNetlist(source);
        } catch (const std::out_of_range &error) {
            threw = true;
            EXPECT_STREQ(error.what(), "stoi");
        }
        ASSERT_EQ(threw, expected.throws);
        if (threw) {
            // What stands there now is no whole tree.
            m_database.reset(type);
            m_expected[type].reset();
            return;
        }
        ASSERT_EQ(answer, expected.complete);
        ASSERT_EQ(m_database.workingCopy(type) != nullptr, m_keep);
        m_expected[type] =
            m_keep ? expectedTree(source, m_database.workingCopy(type), unfold, true).text : expected.text;
    }

    void reset(IDesignDatabase::SOURCE_TYPE type)
    {
        ASSERT_EQ(m_database.reset(type), m_expected[type].has_value());
        m_expected[type].reset();
    }

    void check()
    {
        for (const auto type : {IDesignDatabase::SOURCE_ELABORATED, IDesignDatabase::SOURCE_POST_MAP}) {
            ASSERT_EQ(m_database.isSourceLoaded(type), m_expected[type].has_value());
            ASSERT_EQ(m_database.getRoot(type) != nullptr, m_expected[type].has_value());
            if (!m_expected[type].has_value()) {
                continue;
            }
            const VDBObjectPool *pool = m_database.objectPool(type);
            ASSERT_EQ(m_database.getRoot(type)->getModule(), m_database.getTopModule(type));
            ASSERT_EQ(
                firstDifference(actualTree(*m_database.getRoot(type), m_keep ? pool : nullptr), *m_expected[type]), "");
            if (m_keep) {
                expectPoolToLeadBack(*pool, *m_database.getRoot(type));
            }
        }
        for (const auto type : {IDesignDatabase::SOURCE_ELABORATED, IDesignDatabase::SOURCE_POST_MAP}) {
            ASSERT_TRUE(m_keep || m_database.objectPool(type)->empty());
        }
    }

  private:
    bool m_keep;
    const RandomDesign &m_design;
    DesignDatabase m_database;
    std::optional<std::string> m_expected[3]; ///< by source type; nothing when it is not loaded
};

void runSession(std::uint64_t seed)
{
    testsupport::LibsetGuard guard;
    Random random(seed);
    const RandomDesign design(random);
    Session session(random() % 2 == 0, design);
    for (auto steps = 1 + random() % 7; steps > 0 && !testing::Test::HasFatalFailure(); --steps) {
        const auto type = random() % 2 == 0 ? IDesignDatabase::SOURCE_ELABORATED : IDesignDatabase::SOURCE_POST_MAP;
        if (random() % 3 == 0) {
            session.reset(type);
        } else {
            session.import(type, random() % 2);
        }
        session.check();
    }
}

TEST(ImportProperty, BuildsWhatThePlainReferenceSays)
{
    const auto before = liveItemCounts();
    for (std::uint64_t seed = 1; seed <= testsupport::randomInputs(2500); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        runSession(seed);
        ASSERT_EQ(liveItemCounts(), before);
        if (HasFailure()) {
            return;
        }
    }
}

} // namespace
} // namespace property_test
