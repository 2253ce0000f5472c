#include <netlistdb/SearchResults.h>

#include <netlistdb/DesignDatabase.h>
#include <netlistdb/VDBResultSet.h>
#include <netlistdb/VDBSearchParam.h>

#include "tests/support/ListIterator.h"
#include "tests/support/MockItems.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>

#include <atomic>
#include <regex>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

namespace kvr::netlistdb {
namespace {

using testsupport::ListIterator;
using testsupport::messageOf;
using testsupport::MockPort;

/// Keeps what is abandoned where the leak check sees it.
IVDBResultSet *remembered(IVDBResultSet *results)
{
    static auto *const all = new std::vector<IVDBResultSet *>;
    all->push_back(results);
    return results;
}

class SearchResultsTest : public testing::Test {
  protected:
    /// A new set over both ports.
    IVDBResultSet *set()
    {
        items = new ListIterator({&a, &b});
        return remembered(new VDBResultSet(items, [this] { return step(); }));
    }

    MockPort a{"a"};
    MockPort b{"b"};
    ListIterator *items = nullptr; ///< of the set made last
    std::function<bool()> step = [this] { return !items->isEnd(); };
};

TEST_F(SearchResultsTest, StepsThroughTheResultsToTheEnd)
{
    SearchResults results(set());
    items->setContext(&b);
    EXPECT_TRUE(results.next());
    EXPECT_EQ(results.status(), RESULT_MATCH);
    EXPECT_EQ(results.getCurrent(), &a);
    EXPECT_EQ(results.getContext(), &b);
    EXPECT_TRUE(results.next());
    EXPECT_EQ(results.getCurrent(), &b);
    EXPECT_FALSE(results.next());
    EXPECT_EQ(results.status(), RESULT_NONE);
    EXPECT_EQ(results.getCurrent(), nullptr);
}

TEST_F(SearchResultsTest, StepsOnceWhenAskedForTheCurrentResultFirst)
{
    SearchResults results(set());
    EXPECT_EQ(results.getCurrent(), &a);
    EXPECT_TRUE(results.next());
    EXPECT_EQ(results.getCurrent(), &b);
}

TEST_F(SearchResultsTest, EndsAfterACancel)
{
    SearchResults results(set());
    EXPECT_TRUE(results.next());
    results.cancel();
    EXPECT_FALSE(results.next());
}

TEST(SearchResults, IsAtItsEndWithoutASet)
{
    SearchResults results(nullptr);
    EXPECT_EQ(results.status(), RESULT_NONE);
    EXPECT_EQ(results.getCurrent(), nullptr);
    EXPECT_EQ(results.getContext(), nullptr);
    EXPECT_FALSE(results.next());
    results.cancel();
}

TEST_F(SearchResultsTest, LetsGoOfASetWhoseStepThrew)
{
    step = []() -> bool { throw std::runtime_error("step"); };
    for (const bool byCurrent : {false, true}) {
        SearchResults results(set());
        EXPECT_EQ(messageOf<std::runtime_error>([&] {
                      if (byCurrent) {
                          results.getCurrent();
                      } else {
                          results.next();
                      }
                  }),
                  "step");
        EXPECT_EQ(results.status(), RESULT_NONE);
        EXPECT_EQ(results.getCurrent(), nullptr);
        EXPECT_EQ(results.getContext(), nullptr);
        EXPECT_FALSE(results.next());
        results.cancel();
    }
}

TEST_F(SearchResultsTest, CanBeCancelledWhileAStepThrows)
{
    std::atomic<bool> isStepping{false};
    std::atomic<bool> mayThrow{false};
    step = [&]() -> bool {
        isStepping = true;
        while (!mayThrow) {
            std::this_thread::yield();
        }
        throw std::runtime_error("step");
    };
    SearchResults results(set());
    std::thread canceller([&] {
        while (!isStepping) {
            std::this_thread::yield();
        }
        mayThrow = true;
        results.cancel();
    });
    EXPECT_EQ(messageOf<std::runtime_error>([&] { results.next(); }), "step");
    canceller.join();
    EXPECT_FALSE(results.next());
}

TEST(SearchResults, SurvivesABadExpression)
{
    testsupport::MockTree tree;
    DesignDatabase database(false);
    VDBSearchParam param;
    param.startItem = &tree.instance("top", &tree.module("top"));
    param.filterByName = true;
    param.useRegex = true;
    param.pattern = "(";
    SearchResults results(remembered(database.search(param)));
    EXPECT_THROW(results.next(), std::regex_error);
    EXPECT_FALSE(results.next());
}

TEST(SearchResults, IsNeitherCopiedNorMoved)
{
    EXPECT_FALSE(std::is_copy_constructible_v<SearchResults>);
    EXPECT_FALSE(std::is_move_constructible_v<SearchResults>);
}

} // namespace
} // namespace kvr::netlistdb
