// Memory that runs out at any moment of a search: std::bad_alloc passes, nothing leaks, and another search finds all.

#include "WalkText.h"

#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"
#include "tests/support/failing_allocator/FailingAllocator.h"

#include <netlistdb/netlistdb.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace kvr::netlistdb;
using testsupport::failAllocation;
using testsupport::Outcome;

namespace {

constexpr const char *DESIGN = R"(
    module leaf(in data_10, out q) at /rtl/leaf.v:1
        net a_net_with_a_rather_long_name
        bus [1:0] a_bus_with_a_rather_long_name
    end
    module mid() at /rtl/mid.v:1 an_instance_with_a_rather_long_name: leaf() end
    module top(in clk) at /rtl/top.v:1 m1: mid() m2: mid() end)";

struct Search {
    const char *pattern;
    bool useRegex;
    bool ignoreCase;
    bool sorted;
};

class InterruptedSearch : public testing::TestWithParam<Search> {
  protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_database.parseElaboratedNetlist(testsupport::netlistFromText(DESIGN)));
        m_param.filterByName = true;
        m_param.pattern = GetParam().pattern;
        m_param.useRegex = GetParam().useRegex;
        m_param.ignoreCase = GetParam().ignoreCase;
        m_param.sortItems = GetParam().sorted;
        m_param.nameOrder = SORT_DESCENDING;
        m_param.startItem = m_database.getRoot(IDesignDatabase::SOURCE_ELABORATED);
        m_expected = whole();
        ASSERT_NE(m_expected.find("data_10"), std::string::npos);
        ASSERT_EQ(m_expected.find("clk"), std::string::npos);
    }

    /// What an undisturbed search finds.
    std::string whole()
    {
        const std::unique_ptr<IVDBResultSet> results(m_database.search(m_param));
        return testsupport::resultText(*results);
    }

    testsupport::LibsetGuard m_guard;
    DesignDatabase m_database{false};
    VDBSearchParam m_param;
    std::string m_expected;
};

TEST_P(InterruptedSearch, OfAWalkLeavesNothingBehind)
{
    int failures = 0;
    Outcome outcome = Outcome::THREW;
    for (long number = 0; outcome != Outcome::NOT_REACHED; ++number) {
        std::string found;
        // The text of the result is kept out of it: only the search may run out of memory.
        found.reserve(4096);
        outcome = failAllocation(number, [&] {
            BFSItemIterator walk(&m_database, m_param);
            for (; VDBHelper::matchParam(&walk, m_param); walk.next()) {
                const IVDBItem *item = walk.getCurrent();
                found += found.empty() ? "" : " ";
                found += item->getItemType() == ITEM_INSTANCE ? "@" : item->getItemType() == ITEM_NET_BUS ? "=" : "";
                found += item->getName();
            }
        });
        if (outcome == Outcome::THREW) {
            ++failures;
            ASSERT_EQ(found, m_expected.substr(0, found.size())) << "allocation " << number;
        } else {
            ASSERT_EQ(found, m_expected) << "allocation " << number;
        }
    }
    EXPECT_GT(failures, 4);
    EXPECT_EQ(whole(), m_expected);
}

TEST_P(InterruptedSearch, OfAResultSetThatIsMadeOrStepsPassesTheFailureOn)
{
    int failures = 0;
    Outcome outcome = Outcome::THREW;
    for (long number = 0; outcome != Outcome::NOT_REACHED; ++number) {
        // An abandoned set is never freed: here the leak check sees it.
        static auto *const all = new std::vector<IVDBResultSet *>;
        all->reserve(all->size() + 1);
        outcome = failAllocation(number, [&] {
            all->push_back(m_database.search(m_param));
            SearchResults results(all->back());
            while (results.next()) {
            }
        });
        failures += outcome == Outcome::THREW ? 1 : 0;
    }
    EXPECT_GT(failures, 8);
    EXPECT_EQ(whole(), m_expected);
}

TEST_P(InterruptedSearch, GoesOnWhereItStoodWhenThereIsMemoryAgain)
{
    Outcome outcome = Outcome::THREW;
    for (long number = 0; outcome != Outcome::NOT_REACHED; ++number) {
        std::string found;
        found.reserve(4096);
        BFSItemIterator walk(&m_database, m_param);
        bool hasMatch = true;
        const auto search = [&] {
            while (VDBHelper::matchParam(&walk, m_param)) {
                const IVDBItem *item = walk.getCurrent();
                const std::size_t before = found.size();
                found += found.empty() ? "" : " ";
                found += item->getItemType() == ITEM_INSTANCE ? "@" : item->getItemType() == ITEM_NET_BUS ? "=" : "";
                found += item->getName();
                try {
                    walk.next();
                } catch (...) {
                    found.resize(before); // it will be met again
                    throw;
                }
            }
            hasMatch = false;
        };
        outcome = failAllocation(number, search);
        if (outcome == Outcome::THREW) {
            search();
        }
        ASSERT_FALSE(hasMatch);
        ASSERT_EQ(found, m_expected) << "allocation " << number;
    }
}

INSTANTIATE_TEST_SUITE_P(SearchAllocationFailure, InterruptedSearch,
                         testing::Values(Search{"data_10", false, false, false}, Search{"DATA_10", false, true, false},
                                         Search{"name/data.10$", true, false, false},
                                         Search{"NAME/DATA.10$", true, true, false},
                                         Search{"long_name/", false, false, true},
                                         Search{"LONG_NAME/", false, true, true},
                                         Search{"(long)_name/.*", true, false, true}));

} // namespace
