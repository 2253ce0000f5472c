#include <netlistdb/BFSItemIterator.h>
#include <netlistdb/VDBHelper.h>

#include "WalkText.h"
#include "tests/support/ListIterator.h"
#include "tests/support/MockItems.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace kvr::netlistdb {
namespace {

using testsupport::ListIterator;
using testsupport::messageOf;
using testsupport::MockInstance;
using testsupport::MockNet;
using testsupport::MockNetlist;
using testsupport::MockTree;
using testsupport::wordOf;

/// What a matcher reports on the rest of a walk.
template <typename Match> std::string reported(TreeIterator &iterator, Match match)
{
    std::string text;
    for (; match(&iterator); iterator.next()) {
        text += (text.empty() ? "" : " ") + wordOf(iterator.getCurrent());
    }
    EXPECT_TRUE(iterator.isEnd());
    return text;
}

/// The root, whose path is empty, with top/u1 and top/u_core below.
class NetMatchersTest : public testing::Test {
  protected:
    NetMatchersTest()
    {
        tree.net(rootModule, "clk");
        tree.port(rootModule, "clk_port");
        tree.bus(leafModule, "data");
        tree.net(leafModule, "clk_div");
        tree.net(leafModule, "rst");
        tree.port(leafModule, "clk_port");
        leafModule.ports.push_back(nullptr);
        param.startItem = &root;
    }

    std::string matchPlain(const std::string &pattern, bool ignoreCase = false) const
    {
        BFSItemIterator iterator(nullptr, param);
        return reported(iterator, [&](TreeIterator *it) { return VDBHelper::matchNet(it, pattern, ignoreCase); });
    }

    std::string matchExpression(const std::regex &expression) const
    {
        BFSItemIterator iterator(nullptr, param);
        return reported(iterator, [&](TreeIterator *it) { return VDBHelper::matchNetRegex(it, expression); });
    }

    std::string matchRecord() const
    {
        BFSItemIterator iterator(nullptr, param);
        return reported(iterator, [&](TreeIterator *it) { return VDBHelper::matchParam(it, param); });
    }

    MockTree tree;
    MockNetlist &rootModule = tree.module("root");
    MockNetlist &emptyModule = tree.module("empty");
    MockNetlist &leafModule = tree.module("leaf");
    MockInstance &root = tree.instance("", &rootModule);
    MockInstance &top = tree.instance("top", &emptyModule, &root);
    MockInstance &u1 = tree.instance("u1", &leafModule, &top);
    MockInstance &core = tree.instance("u_core", &leafModule, &top);
    VDBSearchParam param;
    const std::string everything = "@ clk @top @u1 =data clk_div rst @u_core =data clk_div rst";
};

TEST_F(NetMatchersTest, NamesANetBehindThePathOfItsInstance)
{
    IVDBNet *clk = rootModule.nets[0];
    EXPECT_EQ(VDBHelper::getNetFullName(clk, &core), "top/u_core/clk");
    EXPECT_EQ(VDBHelper::getNetFullName(clk, &root), "clk");
    EXPECT_EQ(VDBHelper::getNetFullName(clk, nullptr), "clk");
    EXPECT_EQ(VDBHelper::getNetFullName(leafModule.buses[0], &u1), "top/u1/data");
}

TEST_F(NetMatchersTest, MatchAllNetReportsInstancesNetsAndBusesAndNoPort)
{
    BFSItemIterator iterator(nullptr, param);
    EXPECT_EQ(reported(iterator, VDBHelper::matchAllNet), everything);
}

TEST_F(NetMatchersTest, StaysOnTheItemItReports)
{
    BFSItemIterator iterator(nullptr, param);
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(VDBHelper::matchAllNet(&iterator));
        EXPECT_TRUE(VDBHelper::matchNet(&iterator, "none", false));
        EXPECT_TRUE(VDBHelper::matchNetRegex(&iterator, std::regex("none")));
        EXPECT_EQ(iterator.getCurrent(), &root);
    }
    iterator.next();
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(VDBHelper::matchNet(&iterator, "clk", false));
        EXPECT_EQ(iterator.getCurrent(), rootModule.nets[0]);
    }
}

TEST_F(NetMatchersTest, ReportsEveryInstanceWhateverThePatternAndMakesItTheContext)
{
    BFSItemIterator iterator(nullptr, param);
    for (IVDBInstance *instance : {&root, &top, &u1, &core}) {
        ASSERT_TRUE(VDBHelper::matchNet(&iterator, "nowhere", false));
        EXPECT_EQ(iterator.getCurrent(), instance);
        EXPECT_EQ(iterator.getContext(), instance);
        iterator.next();
    }
    EXPECT_FALSE(VDBHelper::matchNet(&iterator, "nowhere", false));
    EXPECT_TRUE(iterator.isEnd());
    EXPECT_EQ(iterator.getContext(), &core);
}

TEST_F(NetMatchersTest, StepsOverAnInstanceOfAnotherTypeToWhatLiesBelow)
{
    top.itemType = ITEM_PORT;
    EXPECT_EQ(matchPlain(""), "@ clk @u1 =data clk_div rst @u_core =data clk_div rst");
}

TEST_F(NetMatchersTest, FindsPlainTextAnywhereInTheFullName)
{
    EXPECT_EQ(matchPlain("clk"), "@ clk @top @u1 clk_div @u_core clk_div");
    EXPECT_EQ(matchPlain("top/u1/clk_div"), "@ @top @u1 clk_div @u_core");
    EXPECT_EQ(matchPlain("u1"), "@ @top @u1 =data clk_div rst @u_core");
    EXPECT_EQ(matchPlain("1/d"), "@ @top @u1 =data @u_core");
    EXPECT_EQ(matchPlain("/"), "@ @top @u1 =data clk_div rst @u_core =data clk_div rst");
    EXPECT_EQ(matchPlain("/clk"), "@ @top @u1 clk_div @u_core clk_div");
    EXPECT_EQ(matchPlain("clk_port"), "@ @top @u1 @u_core");
    EXPECT_EQ(matchPlain("top/u1/clk_div_"), "@ @top @u1 @u_core");
}

TEST_F(NetMatchersTest, ReportsEveryNetForAnEmptyPlainPattern)
{
    EXPECT_EQ(matchPlain(""), everything);
    EXPECT_EQ(matchPlain("", true), everything);
}

TEST_F(NetMatchersTest, FoldsCaseOnBothSidesOnlyWhenAsked)
{
    EXPECT_EQ(matchPlain("CLK"), "@ @top @u1 @u_core");
    EXPECT_EQ(matchPlain("CLK", true), "@ clk @top @u1 clk_div @u_core clk_div");
    EXPECT_EQ(matchPlain("U1/CLK", true), "@ @top @u1 clk_div @u_core");
    EXPECT_EQ(matchPlain("TOP", true), "@ @top @u1 =data clk_div rst @u_core =data clk_div rst");
    tree.net(rootModule, "RESET");
    EXPECT_EQ(matchPlain("reset"), "@ @top @u1 @u_core");
    EXPECT_EQ(matchPlain("reset", true), "@ RESET @top @u1 @u_core");
}

TEST_F(NetMatchersTest, SearchesExpressionsAnywhereInTheFullName)
{
    EXPECT_EQ(matchExpression(std::regex("clk$")), "@ clk @top @u1 @u_core");
    EXPECT_EQ(matchExpression(std::regex("^clk")), "@ clk @top @u1 @u_core");
    EXPECT_EQ(matchExpression(std::regex("u_[a-z]+/(data|rst)")), "@ @top @u1 @u_core =data rst");
    EXPECT_EQ(matchExpression(std::regex("CLK_D")), "@ @top @u1 @u_core");
    EXPECT_EQ(matchExpression(std::regex("CLK_D", std::regex::icase)), "@ @top @u1 clk_div @u_core clk_div");
}

TEST_F(NetMatchersTest, FindsTheExpressionAtTheEndOfALongerName)
{
    tree.net(emptyModule, "clk");
    EXPECT_EQ(matchExpression(std::regex("clk$")), "@ clk @top clk @u1 @u_core");
}

TEST_F(NetMatchersTest, AcceptsMatchesOfLengthZero)
{
    EXPECT_EQ(matchExpression(std::regex("x*")), everything);
    EXPECT_EQ(matchExpression(std::regex("")), everything);
}

TEST_F(NetMatchersTest, AsksForThePathOncePerCallAndNotAtAllWhenTheNameHoldsThePattern)
{
    for (int i = 0; i < 100; ++i) {
        tree.net(emptyModule, "n");
    }
    BFSItemIterator iterator(nullptr, param);
    while (iterator.getCurrent() != emptyModule.nets[0]) {
        VDBHelper::matchAllNet(&iterator);
        iterator.next();
    }
    ASSERT_TRUE(VDBHelper::matchNet(&iterator, "n", false));
    EXPECT_EQ(top.paths, 0);
    ASSERT_TRUE(VDBHelper::matchNet(&iterator, "nowhere", false));
    EXPECT_EQ(iterator.getCurrent(), &u1);
    EXPECT_EQ(top.paths, 1);
}

TEST_F(NetMatchersTest, FollowsAContextThatChangesBetweenNets)
{
    /// Takes the context of each net from a list.
    class ContextIterator : public ListIterator {
      public:
        ContextIterator(const std::vector<IVDBItem *> &items, std::vector<IVDBItem *> contexts)
            : ListIterator(items), m_contexts(std::move(contexts))
        {
        }
        void next() override
        {
            ListIterator::next();
            ++m_step;
        }
        IVDBItem *getContext() override { return m_contexts.at(m_step); }

      private:
        std::vector<IVDBItem *> m_contexts;
        std::size_t m_step = 0;
    };
    IVDBNet *clk = rootModule.nets[0];
    const std::vector<IVDBItem *> contexts = {&u1, &core, &u1, &top};
    for (const bool ignoreCase : {false, true}) {
        ContextIterator iterator({clk, clk, clk, clk}, contexts);
        ASSERT_TRUE(VDBHelper::matchNet(&iterator, "core/c", ignoreCase));
        EXPECT_EQ(iterator.getContext(), &core);
        iterator.next();
        EXPECT_FALSE(VDBHelper::matchNet(&iterator, "core", ignoreCase));
    }
    ContextIterator iterator({clk, clk, clk, clk}, contexts);
    ASSERT_TRUE(VDBHelper::matchNetRegex(&iterator, std::regex("e/c")));
    EXPECT_EQ(iterator.getContext(), &core);
    iterator.next();
    ASSERT_TRUE(VDBHelper::matchNetRegex(&iterator, std::regex("^top/clk$")));
    EXPECT_EQ(iterator.getContext(), &top);
}

TEST_F(NetMatchersTest, LeavesThePortsToWhoeverWalksOnByHand)
{
    BFSItemIterator iterator(nullptr, param);
    while (iterator.getCurrent() != leafModule.nets[1]) {
        ASSERT_TRUE(VDBHelper::matchAllNet(&iterator));
        iterator.next();
    }
    ASSERT_TRUE(VDBHelper::matchAllNet(&iterator));
    iterator.next();
    EXPECT_EQ(iterator.getCurrent(), leafModule.ports[0]);
    ASSERT_TRUE(VDBHelper::matchAllNet(&iterator));
    EXPECT_EQ(iterator.getCurrent(), &core);
}

TEST_F(NetMatchersTest, ThrowsOnAPortThatClaimsToBeANetOnlyWhenTheWalkComesThere)
{
    class LyingPort : public testsupport::MockPort {
      public:
        using MockPort::MockPort;
        std::uint32_t getItemType() const override { return ITEM_NET; }
    };
    LyingPort liar("liar");
    leafModule.ports.push_back(&liar);
    BFSItemIterator iterator(nullptr, param);
    while (iterator.getCurrent() != leafModule.nets[1]) {
        ASSERT_TRUE(VDBHelper::matchAllNet(&iterator));
        iterator.next();
    }
    EXPECT_EQ(messageOf<std::runtime_error>([&] { VDBHelper::matchNet(&iterator, "nowhere", false); }),
              "Unknown item iterated");
    EXPECT_EQ(iterator.getCurrent(), &liar);
}

TEST_F(NetMatchersTest, MovesAnIteratorDerivedFromTheWalkByItsOwnOperations)
{
    class SteppingIterator : public BFSItemIterator {
      public:
        using BFSItemIterator::BFSItemIterator;
        void next() override
        {
            ++steps;
            BFSItemIterator::next();
        }
        int steps = 0;
    };
    SteppingIterator iterator(nullptr, param);
    EXPECT_EQ(reported(iterator, VDBHelper::matchAllNet), everything);
    EXPECT_EQ(iterator.steps, 16) << "ports included";
}

TEST_F(NetMatchersTest, ThrowsOnAnItemThatIsNotWhatItsTypeSaysAndStaysThere)
{
    MockInstance liar("liar", &emptyModule, nullptr);
    const auto matchers = {+[](TreeIterator *it) { return VDBHelper::matchAllNet(it); },
                           +[](TreeIterator *it) { return VDBHelper::matchNet(it, "", false); },
                           +[](TreeIterator *it) { return VDBHelper::matchNetRegex(it, std::regex("")); }};
    for (const std::uint32_t type : {ITEM_NET, ITEM_NET_BUS}) {
        liar.itemType = type;
        for (const auto &matcher : matchers) {
            ListIterator iterator({leafModule.ports[0], &liar});
            EXPECT_EQ(messageOf<std::runtime_error>([&] { matcher(&iterator); }), "Unknown item iterated");
            EXPECT_EQ(iterator.getCurrent(), &liar);
        }
    }
}

TEST_F(NetMatchersTest, OnlyMatchAllNetTellsNetsFromBuses)
{
    MockNet claimsBus({"n", true, 1, ITEM_NET_BUS});
    testsupport::MockNetBus claimsNet({"b", true, 1, ITEM_NET});
    for (IVDBItem *item : {static_cast<IVDBItem *>(&claimsBus), static_cast<IVDBItem *>(&claimsNet)}) {
        ListIterator iterator({item});
        iterator.setContext(&u1);
        EXPECT_TRUE(VDBHelper::matchNet(&iterator, "u1", false));
        EXPECT_TRUE(VDBHelper::matchNetRegex(&iterator, std::regex("u1")));
        EXPECT_EQ(messageOf<std::runtime_error>([&] { VDBHelper::matchAllNet(&iterator); }), "Unknown item iterated");
        EXPECT_EQ(iterator.getCurrent(), item);
    }
}

TEST_F(NetMatchersTest, ThrowsOnANetWithoutInstanceAsContextAndStaysThere)
{
    IVDBNet *net = rootModule.nets[0];
    for (IVDBItem *context : {static_cast<IVDBItem *>(nullptr), static_cast<IVDBItem *>(net)}) {
        ListIterator iterator({leafModule.ports[0], net});
        iterator.setContext(context);
        EXPECT_EQ(messageOf<std::runtime_error>([&] { VDBHelper::matchNet(&iterator, "", false); }),
                  "Unknown item saved in context");
        EXPECT_EQ(messageOf<std::runtime_error>([&] { VDBHelper::matchNetRegex(&iterator, std::regex("")); }),
                  "Unknown item saved in context");
        EXPECT_EQ(iterator.getCurrent(), net);
        EXPECT_TRUE(VDBHelper::matchAllNet(&iterator)) << "which needs no context";
    }
}

TEST_F(NetMatchersTest, TakesAnyItemOfTypeInstanceForTheContext)
{
    MockNet liar({"n", true, 1, ITEM_INSTANCE});
    ListIterator iterator({&liar, rootModule.nets[0]});
    EXPECT_TRUE(VDBHelper::matchNet(&iterator, "x", false));
    EXPECT_EQ(iterator.getContext(), &liar);
    iterator.next();
    EXPECT_EQ(messageOf<std::runtime_error>([&] { VDBHelper::matchNet(&iterator, "x", false); }),
              "Unknown item saved in context");
}

TEST_F(NetMatchersTest, MatchParamIgnoresThePatternWithoutFilter)
{
    param.useRegex = true;
    param.pattern = "(";
    EXPECT_EQ(matchRecord(), everything);
}

TEST_F(NetMatchersTest, MatchParamLooksForPlainText)
{
    param.filterByName = true;
    param.pattern = "CLK";
    EXPECT_EQ(matchRecord(), "@ @top @u1 @u_core");
    param.ignoreCase = true;
    EXPECT_EQ(matchRecord(), "@ clk @top @u1 clk_div @u_core clk_div");
    param.pattern = "clk$";
    EXPECT_EQ(matchRecord(), "@ @top @u1 @u_core");
}

TEST_F(NetMatchersTest, MatchParamSearchesExpressions)
{
    param.filterByName = true;
    param.useRegex = true;
    param.pattern = "u1/CLK_.*";
    EXPECT_EQ(matchRecord(), "@ @top @u1 @u_core");
    param.ignoreCase = true;
    EXPECT_EQ(matchRecord(), "@ @top @u1 clk_div @u_core");
    param.pattern = "(CLK|rst)$";
    EXPECT_EQ(matchRecord(), "@ clk @top @u1 rst @u_core rst");
    param.pattern = "clk$";
    EXPECT_EQ(matchRecord(), "@ clk @top @u1 @u_core");
    param.pattern = "";
    EXPECT_EQ(matchRecord(), everything);
}

TEST_F(NetMatchersTest, MatchParamThrowsOnAnInvalidExpressionEvenAtTheEnd)
{
    param.filterByName = true;
    param.useRegex = true;
    param.pattern = "clk(";
    BFSItemIterator iterator(nullptr, param);
    EXPECT_THROW(VDBHelper::matchParam(&iterator, param), std::regex_error);
    EXPECT_EQ(iterator.getCurrent(), &root);
    EXPECT_EQ(iterator.getContext(), nullptr);
    ListIterator atEnd({});
    EXPECT_THROW(VDBHelper::matchParam(&atEnd, param), std::regex_error);
}

} // namespace
} // namespace kvr::netlistdb
