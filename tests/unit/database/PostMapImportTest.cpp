#include "netlist/VDBObjectPool.h"

#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"
#include "tests/support/Sources.h"
#include "tests/support/Throws.h"
#include "tests/support/TreeText.h"

#include <netlistdb/netlistdb.h>

#include <DataBase.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace kvr::netlistdb {
namespace {

using testsupport::ELABORATED;
using testsupport::LibsetGuard;
using testsupport::messageOf;
using testsupport::moduleText;
using testsupport::netlistFromText;
using testsupport::POST_MAP;
using testsupport::treeText;

struct ImportedPostMap {
    explicit ImportedPostMap(std::string_view text, bool keep = true)
        : source(netlistFromText(text)), database(keep), answer(database.parsePostMapNetlist(source)),
          root(database.getRoot(POST_MAP)), top(database.getTopModule(POST_MAP))
    {
    }

    LibsetGuard guard;
    Verific::Netlist *source;
    DesignDatabase database;
    bool answer;
    IVDBInstance *root;
    IVDBNetlist *top;
};

TEST(PostMapImport, RefusesANullNetlistAndChangesNothing)
{
    LibsetGuard guard;
    DesignDatabase database(true);
    EXPECT_EQ(messageOf<std::invalid_argument>([&] { database.parsePostMapNetlist(nullptr); }), "netlist is nullptr");
    EXPECT_FALSE(database.isSourceLoaded(POST_MAP));
}

TEST(PostMapImport, GivesEveryCellOneInstanceAndEveryCellTypeOneModule)
{
    const ImportedPostMap design(R"(
        module top(in clk, d, out q)
            f1: KVR_FF(C=clk, D=d, Q=n)
            f2: KVR_FF(C=clk, D=n, Q=q) #INIT=1 #R_ASYNC=0
            l1: KVR_LUT1(I0=n, O=m)
        end)");
    EXPECT_TRUE(design.answer);
    EXPECT_EQ(treeText(*design.root), "f1: KVR_FF\nf2: KVR_FF\nl1: KVR_LUT1\n");
    const auto &children = design.root->getSubInstances();
    EXPECT_EQ(children[0]->getModule(), children[1]->getModule());
    EXPECT_EQ(children[1]->getParameterCount(), 2u);
    for (const IVDBInstance *child : children) {
        EXPECT_EQ(child->getDepth(), 1u);
        EXPECT_EQ(child->getOwnerInstance(), design.root);
        EXPECT_TRUE(child->getSubInstances().empty());
    }
    EXPECT_EQ(moduleText(*children[2]->getModule()), "port I0 in\nport O out\n");
}

TEST(PostMapImport, UnfoldsTheTopLevelAlone)
{
    const ImportedPostMap design(R"(
        module leaf() end
        module mid() l: leaf() end
        module top() m: mid() x: leaf() end)");
    EXPECT_TRUE(design.answer);
    EXPECT_EQ(treeText(*design.root), "m: mid\nx: leaf\n");
}

TEST(PostMapImport, BuildsNetsAndBusesAsTheElaboratedImportDoes)
{
    const ImportedPostMap design("module top(in [1:0] a) net q[0] net q[1] net n end");
    EXPECT_EQ(moduleText(*design.top),
              "bus a[1:0]: a[1] a[0]\nauto q[1:0]: q[0] q[1]\nnet n\nport a[1] in\nport a[0] in\n");
    EXPECT_EQ(design.top->getName(), "top");
    EXPECT_EQ(design.top->GetLibName(), "work");
}

TEST(PostMapImport, StopsAtAnInstanceWithoutViewAndCountsAsLoaded)
{
    const ImportedPostMap design(R"(
        module top(in clk)
            f1: KVR_FF(C=clk)
            lost: ?
            f2: KVR_FF(C=clk)
        end)");
    EXPECT_FALSE(design.answer);
    EXPECT_TRUE(design.database.isSourceLoaded(POST_MAP));
    EXPECT_EQ(treeText(*design.root), "f1: KVR_FF\n");
    ASSERT_EQ(design.database.listAllClockDomains(POST_MAP).size(), 1u) << "clocks are analysed all the same";
    EXPECT_EQ(design.database.listAllClockDomains(POST_MAP)[0]->getName(), "clk");
}

TEST(PostMapImport, KeepsTheWorkingCopyAndAnalysesClocksExactlyWithKeptSources)
{
    const char *text = "module top(in clk) f: KVR_FF(C=clk) end";
    const ImportedPostMap kept(text, true);
    EXPECT_NE(kept.database.workingCopy(POST_MAP), nullptr);
    EXPECT_EQ(kept.database.workingCopy(ELABORATED), nullptr);
    EXPECT_EQ(kept.database.listAllClockDomains(POST_MAP).size(), 1u);
    const ImportedPostMap dropped(text, false);
    EXPECT_EQ(dropped.database.workingCopy(POST_MAP), nullptr);
    EXPECT_TRUE(dropped.database.listAllClockDomains(POST_MAP).empty());
    EXPECT_EQ(treeText(*dropped.root), "f: KVR_FF\n");
}

TEST(PostMapImport, RegistersModulesNetsPortsAndInstances)
{
    const ImportedPostMap design("module top(in clk) f: KVR_FF(C=clk) end");
    const VDBObjectPool &pool = *design.database.objectPool(POST_MAP);
    const Verific::Netlist *copy = design.database.workingCopy(POST_MAP);
    const Verific::Netlist *flipFlop = testsupport::netlistOfCell("KVR_FF");
    EXPECT_EQ(pool.find(design.top), copy);
    EXPECT_EQ(pool.find(flipFlop), design.root->getSubInstances()[0]->getModule());
    EXPECT_EQ(pool.find(testsupport::portOf(flipFlop, "C")),
              design.root->getSubInstances()[0]->getModule()->getPorts()[0]);
    EXPECT_EQ(pool.find(testsupport::netOf(copy, "clk")), design.top->getNets(false)[0]);
    EXPECT_EQ(pool.find(design.root->getSubInstances()[0]), testsupport::instanceOf(copy, "f"));
    EXPECT_EQ(pool.find(static_cast<const IVDBInstance *>(design.root)), nullptr);
}

TEST(PostMapImport, ThrowsOnASubscriptThatIsTooLargeInTheTop)
{
    LibsetGuard guard;
    const auto before = liveItemCounts();
    DesignDatabase database(true);
    EXPECT_EQ(messageOf<std::out_of_range>(
                  [&] { database.parsePostMapNetlist(netlistFromText("module top() net d[99999999999] end")); }),
              "stoi");
    EXPECT_FALSE(database.isSourceLoaded(POST_MAP));
    EXPECT_EQ(liveItemCounts(), before);
    EXPECT_TRUE(database.objectPool(POST_MAP)->empty());
}

TEST(PostMapImport, ThatThrowsBelowTheTopKeepsTopAndRoot)
{
    LibsetGuard guard;
    const auto before = liveItemCounts();
    DesignDatabase database(true);
    Verific::Netlist *top = netlistFromText(R"(
        module bad() net d[99999999999] end
        module top() u1: bad() end)");
    EXPECT_THROW(database.parsePostMapNetlist(top), std::out_of_range);
    EXPECT_TRUE(database.isSourceLoaded(POST_MAP));
    ASSERT_NE(database.getRoot(POST_MAP), nullptr) << "the root is made before the other modules";
    EXPECT_EQ(treeText(*database.getRoot(POST_MAP)), "");
    EXPECT_TRUE(database.reset(POST_MAP));
    EXPECT_EQ(liveItemCounts(), before);
    EXPECT_TRUE(database.objectPool(POST_MAP)->empty());
}

TEST(PostMapImport, AgainWithoutResetKeepsTheOldTreeAliveUntilTheDatabaseGoes)
{
    const auto before = liveItemCounts();
    {
        LibsetGuard guard;
        DesignDatabase database(true);
        Verific::Netlist *top = netlistFromText("module top(in clk) f: KVR_FF(C=clk) end");
        ASSERT_TRUE(database.parsePostMapNetlist(top));
        IVDBInstance *oldRoot = database.getRoot(POST_MAP);
        ASSERT_TRUE(database.parsePostMapNetlist(top));
        EXPECT_NE(database.getRoot(POST_MAP), oldRoot);
        EXPECT_EQ(treeText(*oldRoot), "f: KVR_FF\n");
        EXPECT_EQ(liveItemCounts()[1] - before[1], 4u);
    }
    EXPECT_EQ(liveItemCounts(), before);
}

TEST(PostMapImport, AgainAfterAFailureWithoutKeptSourcesFreesTheCopyLeftBehind)
{
    const auto before = liveItemCounts();
    {
        LibsetGuard guard;
        DesignDatabase database(false);
        Verific::Netlist *bad = netlistFromText("module leaf() end module bad() net d[99999999999] u: leaf() end");
        const Verific::Netlist *leaf = testsupport::netlistOfCell("leaf");
        EXPECT_THROW(database.parsePostMapNetlist(bad), std::out_of_range);
        EXPECT_NE(database.workingCopy(POST_MAP), nullptr) << "the import ended before it was dropped";
        EXPECT_TRUE(database.parsePostMapNetlist(netlistFromText("module top() u: leaf() end")));
        EXPECT_EQ(database.workingCopy(POST_MAP), nullptr);
        EXPECT_EQ(leaf->NumOfRefs(), 3u) << "bad, its copy and top";
    }
    EXPECT_EQ(liveItemCounts(), before);
}

} // namespace
} // namespace kvr::netlistdb
