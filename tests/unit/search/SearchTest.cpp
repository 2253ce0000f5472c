#include <netlistdb/DesignDatabase.h>
#include <netlistdb/IVDBResultSet.h>
#include <netlistdb/VDBSearchParam.h>

#include "WalkText.h"
#include "tests/support/MockItems.h"

#include <gtest/gtest.h>

#include <memory>
#include <regex>

namespace kvr::netlistdb {
namespace {

using testsupport::resultText;

class SearchTest : public testing::Test {
  protected:
    SearchTest()
    {
        tree.port(module, "p");
        tree.net(module, "n");
        tree.bus(module, "b");
        tree.net(leaf, "m");
        tree.port(leaf, "p");
        param.startItem = &top;
    }

    std::unique_ptr<IVDBResultSet> search() { return std::unique_ptr<IVDBResultSet>(database.search(param)); }

    testsupport::MockTree tree;
    testsupport::MockNetlist &module = tree.module("top");
    testsupport::MockNetlist &leaf = tree.module("leaf");
    testsupport::MockInstance &top = tree.instance("top", &module);
    testsupport::MockInstance &u1 = tree.instance("u1", &leaf, &top);
    DesignDatabase database{false};
    VDBSearchParam param;
};

TEST_F(SearchTest, FindsNothingWithADefaultRecord)
{
    param = VDBSearchParam();
    const auto results = search();
    EXPECT_EQ(results->status(), RESULT_MATCH);
    results->next();
    EXPECT_EQ(results->status(), RESULT_NONE);
    EXPECT_EQ(results->getCurrent(), nullptr);
    EXPECT_EQ(results->getContext(), nullptr);
}

TEST_F(SearchTest, StartsWithTheStartInstanceThenItsBusesAndNetsAndNoPort)
{
    EXPECT_EQ(resultText(*search()), "@top =b n @u1 m");
}

TEST_F(SearchTest, GivesWithEachNetTheInstanceItBelongsTo)
{
    const auto results = search();
    for (const auto &[word, context] : {std::pair{"@top", &top}, {"=b", &top}, {"n", &top}, {"@u1", &u1}, {"m", &u1}}) {
        results->next();
        EXPECT_EQ(testsupport::wordOf(results->getCurrent()), word);
        EXPECT_EQ(results->getContext(), context);
    }
}

TEST_F(SearchTest, KeepsItsOwnRecord)
{
    param.filterByName = true;
    param.pattern = "u1";
    const auto results = search();
    param = VDBSearchParam();
    EXPECT_EQ(resultText(*results), "@top @u1 m");
}

TEST_F(SearchTest, VisitsNothingBeforeTheFirstStep)
{
    param.filterByName = true;
    param.useRegex = true;
    param.pattern = "(";
    const auto results = search();
    EXPECT_EQ(module.looks, 0);
    EXPECT_EQ(results->status(), RESULT_MATCH);
    // Not stepped: the invalid expression has not been looked at.
}

TEST_F(SearchTest, GetCurrentBeforeNextStepsOnce)
{
    const auto results = search();
    EXPECT_EQ(results->getCurrent(), &top);
    results->next();
    EXPECT_EQ(testsupport::wordOf(results->getCurrent()), "=b");
}

TEST_F(SearchTest, MovesOnAfterCancelWithStatusNone)
{
    const auto results = search();
    results->next();
    results->cancel();
    results->next();
    EXPECT_EQ(results->status(), RESULT_NONE);
    EXPECT_EQ(testsupport::wordOf(results->getCurrent()), "=b");
}

TEST_F(SearchTest, GivesACollapsedModulesChildrenTheContextReportedLast)
{
    testsupport::MockNetlist &generated = tree.module("generated", false);
    testsupport::MockInstance &g = tree.instance("g", &generated, &top);
    testsupport::MockInstance &last = tree.instance("z", &leaf, &top);
    tree.instance("below", &leaf, &g);
    param.collapseNonUserModules = true;
    const auto results = search();
    EXPECT_EQ(resultText(*results), "@top =b n @u1 m @g @z m m");
    EXPECT_EQ(results->getContext(), &last);
}

} // namespace
} // namespace kvr::netlistdb
