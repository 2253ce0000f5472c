#include "netlist/VDBObjectPool.h"

#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"
#include "tests/support/Sources.h"
#include "tests/support/Throws.h"
#include "tests/support/TreeText.h"

#include <netlistdb/netlistdb.h>

#include <DataBase.h>

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>

namespace kvr::netlistdb {
namespace {

using testsupport::ELABORATED;
using testsupport::LibsetGuard;
using testsupport::messageOf;
using testsupport::netlistFromText;
using testsupport::POST_MAP;
using testsupport::treeText;

/// A database with this elaborated design; the answer of the import beside it.
struct Imported {
    explicit Imported(std::string_view text, bool keep = true)
        : source(netlistFromText(text)), database(keep), answer(database.parseElaboratedNetlist(source)),
          root(database.getRoot(ELABORATED)), top(database.getTopModule(ELABORATED))
    {
    }
    std::string tree() const { return treeText(*root); }

    LibsetGuard guard;
    Verific::Netlist *source;
    DesignDatabase database;
    bool answer;
    IVDBInstance *root;
    IVDBNetlist *top;
};

TEST(ElaboratedImport, RefusesANullNetlistAndChangesNothing)
{
    LibsetGuard guard;
    DesignDatabase database(true);
    EXPECT_EQ(messageOf<std::invalid_argument>([&] { database.parseElaboratedNetlist(nullptr); }),
              "netlist is nullptr");
    EXPECT_FALSE(database.isSourceLoaded(ELABORATED));
}

TEST(ElaboratedImport, OfADesignWithoutInstancesIsARootAlone)
{
    const Imported design("module top(in clk) net n end");
    EXPECT_TRUE(design.answer);
    EXPECT_EQ(design.tree(), "");
    EXPECT_EQ(design.root->getModule(), design.top);
    EXPECT_EQ(design.root->getOwnerInstance(), nullptr);
    EXPECT_EQ(design.root->getName(), "");
    EXPECT_EQ(design.root->getDepth(), 0u);
}

TEST(ElaboratedImport, UnfoldsEveryInstanceOfEveryLevel)
{
    const Imported design(R"(
        module leaf() end
        module mid() l1: leaf() l2: leaf() end
        module top() m1: mid() x: leaf() m2: mid() end)");
    EXPECT_TRUE(design.answer);
    EXPECT_EQ(design.tree(), "m1: mid\n  l1: leaf\n  l2: leaf\nx: leaf\nm2: mid\n  l1: leaf\n  l2: leaf\n");
    const IVDBInstance *l2 = design.root->getSubInstances()[2]->getSubInstances()[1];
    EXPECT_EQ(l2->getPath(), "m2/l2");
    EXPECT_EQ(l2->getDepth(), 2u);
    EXPECT_EQ(l2->getOwnerInstance(), design.root->getSubInstances()[2]);
}

TEST(ElaboratedImport, SharesOneModuleAmongItsInstances)
{
    const auto before = liveItemCounts();
    const Imported design(R"(
        module leaf() end
        module mid() l: leaf() end
        module top() a: leaf() b: leaf() c: leaf() m: mid() end)");
    const auto after = liveItemCounts();
    EXPECT_EQ(after[1] - before[1], 3u) << "top, leaf, mid";
    EXPECT_EQ(after[2] - before[2], 6u) << "the root and five instances";
    const auto &children = design.root->getSubInstances();
    EXPECT_EQ(children[0]->getModule(), children[1]->getModule());
    EXPECT_EQ(children[0]->getModule(), children[2]->getModule());
    EXPECT_EQ(children[0]->getModule(), children[3]->getSubInstances()[0]->getModule());
    EXPECT_NE(children[0]->getModule(), children[3]->getModule());
    for (const IVDBInstance *child : children) {
        EXPECT_EQ(child->getOwnerInstance(), design.root);
    }
}

TEST(ElaboratedImport, HoldsANameOnceForAllOccurrencesOfAnInstance)
{
    const Imported design(R"(
        module leaf() end
        module mid() l: leaf() end
        module top() a: mid() b: mid() end)");
    auto &children = design.root->getSubInstances();
    const IVDBInstance *ofA = children[0]->getSubInstances()[0];
    const IVDBInstance *ofB = children[1]->getSubInstances()[0];
    EXPECT_EQ(ofA->getName(), "l");
    EXPECT_EQ(&ofA->getName(), &ofB->getName());
}

TEST(ElaboratedImport, ANameLivesAsLongAsAnyOccurrenceOfItsInstance)
{
    Imported design(R"(
        module leaf() end
        module mid() an_instance_with_a_long_name: leaf() end
        module top() a: mid() b: mid() end)");
    auto &children = const_cast<std::vector<IVDBInstance *> &>(design.root->getSubInstances());
    delete children[0];
    children.erase(children.begin());
    EXPECT_EQ(children[0]->getSubInstances()[0]->getPath(), "b/an_instance_with_a_long_name");
}

TEST(ElaboratedImport, UnfoldsHierarchiesDeeperThanTheStack)
{
    constexpr unsigned LEVELS = 20000;
    LibsetGuard guard;
    const auto before = liveItemCounts();
    auto *library = new Verific::Library("work");
    Verific::Libset::Global()->Add(library);
    Verific::Netlist *below = nullptr;
    for (unsigned level = 0; level <= LEVELS; ++level) {
        auto *cell = new Verific::Cell(("m" + std::to_string(level)).c_str());
        library->Add(cell);
        auto *netlist = new Verific::Netlist("netlist");
        cell->Add(netlist);
        if (below != nullptr) {
            netlist->Add(new Verific::Instance("u", below));
        }
        below = netlist;
    }
    {
        DesignDatabase database(true);
        ASSERT_TRUE(database.parseElaboratedNetlist(below));
        EXPECT_EQ(liveItemCounts()[2] - before[2], LEVELS + 1);
        const IVDBInstance *deepest = database.getRoot(ELABORATED);
        while (!deepest->getSubInstances().empty()) {
            deepest = deepest->getSubInstances()[0];
        }
        EXPECT_EQ(deepest->getDepth(), LEVELS);
        EXPECT_EQ(deepest->getPath().size(), 2 * LEVELS - 1);
    }
    EXPECT_EQ(liveItemCounts(), before);
}

TEST(ElaboratedImport, BuildsOperatorsAndPrimitivesToo)
{
    const Imported design(R"(
        operator ADD(in A, B, out O) end
        register DFF(in c, d, out q) clock=c end
        module top(in clk) add: ADD(O=s) r: DFF(c=clk, d=s) end)");
    EXPECT_TRUE(design.answer);
    EXPECT_EQ(design.tree(), "add: ADD\nr: DFF\n");
    EXPECT_EQ(design.root->getSubInstances()[0]->getModule()->GetLibName(), "Operators");
    EXPECT_EQ(design.root->getSubInstances()[1]->getModule()->GetLibName(), "Primitives");
}

TEST(ElaboratedImport, NamesTheTopAfterTheCellOfTheGivenNetlist)
{
    const Imported owned("module chip() library=lib end");
    EXPECT_EQ(owned.top->getName(), "chip");
    EXPECT_EQ(owned.top->GetLibName(), "lib");
}

TEST(ElaboratedImport, LeavesTheNamesOfALooseTopEmpty)
{
    LibsetGuard guard;
    Verific::Netlist *top = netlistFromText("module leaf() end module chip() loose u: leaf() end");
    DesignDatabase database(false);
    EXPECT_TRUE(database.parseElaboratedNetlist(top));
    EXPECT_EQ(database.getTopModule(ELABORATED)->getName(), "");
    EXPECT_EQ(database.getTopModule(ELABORATED)->GetLibName(), "");
    EXPECT_EQ(treeText(*database.getRoot(ELABORATED)), "u: leaf\n");
    delete top;
}

TEST(ElaboratedImport, NamesTheTopAfterACellWithoutLibrary)
{
    LibsetGuard guard;
    Verific::Cell cell("chip");
    auto *top = new Verific::Netlist("netlist");
    cell.Add(top);
    DesignDatabase database(false);
    EXPECT_TRUE(database.parseElaboratedNetlist(top));
    EXPECT_EQ(database.getTopModule(ELABORATED)->getName(), "chip");
    EXPECT_EQ(database.getTopModule(ELABORATED)->GetLibName(), "");
}

TEST(ElaboratedImport, CreatesInstancesOfBlackBoxesAndLooksIntoNone)
{
    const Imported design(R"(
        module leaf() end
        blackbox ip() hidden: leaf() end
        module mid() b: ip() l: leaf() end
        module top() m: mid() end)");
    EXPECT_TRUE(design.answer);
    EXPECT_EQ(design.tree(), "m: mid\n  b: ip\n  l: leaf\n");
}

TEST(ElaboratedImport, UnfoldsTheContentsOfABlackBoxRightBelowTheTop)
{
    const Imported design(R"(
        module leaf() end
        blackbox ip() kept: leaf() end
        module top() b: ip() end)");
    EXPECT_EQ(design.tree(), "b: ip\n  kept: leaf\n");
}

TEST(ElaboratedImport, StopsTheFirstLevelAtAnInstanceWithoutView)
{
    const Imported design(R"(
        module leaf() end
        module mid() l: leaf() end
        module top() a: mid() lost: ? b: mid() end)");
    EXPECT_FALSE(design.answer);
    EXPECT_TRUE(design.database.isSourceLoaded(ELABORATED));
    EXPECT_EQ(design.tree(), "a: mid\n  l: leaf\n") << "what was made is still unfolded";
}

TEST(ElaboratedImport, StopsOneModuleAtAnInstanceWithoutViewAndGoesOnWithTheNext)
{
    const Imported design(R"(
        module leaf() end
        module torn() a: leaf() lost: ? b: leaf() end
        module whole() a: leaf() b: leaf() end
        module top() t1: torn() w: whole() t2: torn() end)");
    EXPECT_FALSE(design.answer);
    EXPECT_EQ(design.tree(), "t1: torn\n  a: leaf\nw: whole\n  a: leaf\n  b: leaf\nt2: torn\n  a: leaf\n");
}

TEST(ElaboratedImport, KeepsTheWorkingCopyExactlyWithKeptSources)
{
    const Imported kept("module top() end", true);
    ASSERT_NE(kept.database.workingCopy(ELABORATED), nullptr);
    EXPECT_NE(kept.database.workingCopy(ELABORATED), kept.source);
    const Imported dropped("register R(in c) clock=c end module top(in clk) r: R(c=clk) end", false);
    EXPECT_EQ(dropped.database.workingCopy(ELABORATED), nullptr);
    EXPECT_TRUE(dropped.database.listAllClockDomains(ELABORATED).empty());
    EXPECT_EQ(dropped.tree(), "r: R\n") << "the tree does without the copy";
}

TEST(ElaboratedImport, AnalysesClocksExactlyWithKeptSources)
{
    const Imported design("register R(in c) clock=c end module top(in clk) r: R(c=clk) end");
    ASSERT_EQ(design.database.listAllClockDomains(ELABORATED).size(), 1u);
    EXPECT_EQ(design.database.listAllClockDomains(ELABORATED)[0]->getName(), "clk");
}

TEST(ElaboratedImport, BuildsTheTopFromTheCopyAndTheRestFromTheOriginals)
{
    const Imported design("module leaf(in a) net n end module top(in a) u: leaf(a=a) end");
    const VDBObjectPool &pool = *design.database.objectPool(ELABORATED);
    EXPECT_EQ(pool.find(design.top), design.database.workingCopy(ELABORATED));
    EXPECT_EQ(pool.find(design.source), nullptr);
    const Verific::Netlist *leaf = testsupport::netlistOfCell("leaf");
    EXPECT_EQ(pool.find(leaf), design.root->getSubInstances()[0]->getModule());
    const Verific::Net *inCopy = testsupport::netOf(design.database.workingCopy(ELABORATED), "a");
    EXPECT_EQ(pool.find(inCopy), design.top->getNets(false)[0]);
    EXPECT_EQ(pool.find(testsupport::netOf(design.source, "a")), nullptr);
    EXPECT_EQ(pool.find(testsupport::netOf(leaf, "n")),
              design.root->getSubInstances()[0]->getModule()->getNets(false)[1]);
}

TEST(ElaboratedImport, RegistersEveryInstanceBelowTheRoot)
{
    const Imported design(R"(
        module leaf() end
        module mid() l: leaf() end
        module top() m1: mid() m2: mid() end)");
    const VDBObjectPool &pool = *design.database.objectPool(ELABORATED);
    EXPECT_EQ(pool.find(static_cast<const IVDBInstance *>(design.root)), nullptr);
    const Verific::Netlist *copy = design.database.workingCopy(ELABORATED);
    const IVDBInstance *m1 = design.root->getSubInstances()[0];
    const IVDBInstance *m2 = design.root->getSubInstances()[1];
    EXPECT_EQ(pool.find(m1), testsupport::instanceOf(copy, "m1"));
    EXPECT_EQ(pool.find(m2), testsupport::instanceOf(copy, "m2"));
    const Verific::Instance *l = testsupport::instanceOf(testsupport::netlistOfCell("mid"), "l");
    EXPECT_EQ(pool.find(m1->getSubInstances()[0]), l);
    EXPECT_EQ(pool.find(m2->getSubInstances()[0]), l) << "two occurrences of one instance";
    EXPECT_EQ(pool.find(l), nullptr) << "the way back has no single answer";
}

TEST(ElaboratedImport, ReadsTheGivenNetlistOnly)
{
    LibsetGuard guard;
    Verific::Netlist *top = netlistFromText("module leaf(in a) end module top(in a) u: leaf(a=a) end");
    const Verific::Netlist *leaf = testsupport::netlistOfCell("leaf");
    {
        DesignDatabase database(false);
        EXPECT_TRUE(database.parseElaboratedNetlist(top));
    }
    EXPECT_EQ(top->GetInsts()->Size(), 1u);
    EXPECT_EQ(top->GetNets()->Size(), 1u);
    EXPECT_EQ(leaf->NumOfRefs(), 1u) << "the copy is gone";
}

TEST(ElaboratedImport, ThrowsOnASubscriptThatIsTooLargeInTheTop)
{
    LibsetGuard guard;
    const auto before = liveItemCounts();
    DesignDatabase database(true);
    Verific::Netlist *top = netlistFromText("module leaf() end module top() net d[99999999999] u: leaf() end");
    EXPECT_EQ(messageOf<std::out_of_range>([&] { database.parseElaboratedNetlist(top); }), "stoi");
    EXPECT_FALSE(database.isSourceLoaded(ELABORATED));
    EXPECT_EQ(database.getRoot(ELABORATED), nullptr);
    EXPECT_FALSE(database.reset(ELABORATED));
    EXPECT_EQ(liveItemCounts(), before);
    EXPECT_TRUE(database.objectPool(ELABORATED)->empty());

    ASSERT_TRUE(database.parseElaboratedNetlist(testsupport::netlistOfCell("leaf"))) << "the database goes on working";
    EXPECT_EQ(database.getTopModule(ELABORATED)->getName(), "leaf");
}

TEST(ElaboratedImport, ThrowsOnASubscriptThatIsTooLargeBelowAndKeepsWhatWasMade)
{
    LibsetGuard guard;
    const auto before = liveItemCounts();
    DesignDatabase database(true);
    Verific::Netlist *top = netlistFromText(R"(
        module good() net n end
        module bad() net d[99999999999] end
        module top() u1: good() u2: bad() u3: good() end)");
    EXPECT_EQ(messageOf<std::out_of_range>([&] { database.parseElaboratedNetlist(top); }), "stoi");
    EXPECT_TRUE(database.isSourceLoaded(ELABORATED));
    EXPECT_EQ(database.getTopModule(ELABORATED)->getName(), "top");
    EXPECT_EQ(database.getRoot(ELABORATED), nullptr);
    EXPECT_EQ(liveItemCounts()[1] - before[1], 2u) << "top and good stay, bad is gone";
    EXPECT_EQ(database.objectPool(ELABORATED)->find(testsupport::netlistOfCell("bad")), nullptr);
    EXPECT_NE(database.objectPool(ELABORATED)->find(testsupport::netlistOfCell("good")), nullptr);
    EXPECT_TRUE(database.reset(ELABORATED));
    EXPECT_EQ(liveItemCounts(), before);
    EXPECT_TRUE(database.objectPool(ELABORATED)->empty());
}

TEST(ElaboratedImport, AgainWithoutResetKeepsTheOldTreeAliveUntilTheDatabaseGoes)
{
    const auto before = liveItemCounts();
    {
        LibsetGuard guard;
        DesignDatabase database(true);
        Verific::Netlist *first = netlistFromText("module leaf(in a) end module first() u: leaf() end");
        Verific::Netlist *second = netlistFromText("module second() v: leaf() w: leaf() end");
        ASSERT_TRUE(database.parseElaboratedNetlist(first));
        IVDBNetlist *oldTop = database.getTopModule(ELABORATED);
        IVDBInstance *oldRoot = database.getRoot(ELABORATED);
        const Verific::Netlist *oldCopy = database.workingCopy(ELABORATED);
        IVDBInstance *u = oldRoot->getSubInstances()[0];

        ASSERT_TRUE(database.parseElaboratedNetlist(second));
        EXPECT_NE(database.getTopModule(ELABORATED), oldTop);
        EXPECT_NE(database.getRoot(ELABORATED), oldRoot);
        EXPECT_NE(database.workingCopy(ELABORATED), oldCopy);
        EXPECT_EQ(treeText(*database.getRoot(ELABORATED)), "v: leaf\nw: leaf\n");
        EXPECT_EQ(treeText(*oldRoot), "u: leaf\n");
        EXPECT_EQ(oldTop->getName(), "first");
        EXPECT_EQ(database.objectPool(ELABORATED)->find(u), testsupport::instanceOf(oldCopy, "u"));
        const auto oldLeaf = database.objectPool(ELABORATED)->find(testsupport::netlistOfCell("leaf"));
        EXPECT_EQ(oldLeaf, u->getModule()) << "the first registration stays";

        EXPECT_TRUE(database.reset(ELABORATED));
        EXPECT_EQ(liveItemCounts()[1], before[1]) << "all modules go with their source";
        EXPECT_EQ(liveItemCounts()[2] - before[2], 2u) << "the replaced root and its instance stay";
        EXPECT_EQ(u->getPath(), "u");
        EXPECT_TRUE(database.objectPool(ELABORATED)->empty());
    }
    EXPECT_EQ(liveItemCounts(), before);
}

TEST(ElaboratedImport, ThatThrowsAfterALoadedOneLeavesTheOldTree)
{
    const auto before = liveItemCounts();
    {
        LibsetGuard guard;
        DesignDatabase database(true);
        Verific::Netlist *good = netlistFromText("module leaf() end module good() u: leaf() end");
        Verific::Netlist *bad = netlistFromText("module bad() net d[99999999999] end");
        ASSERT_TRUE(database.parseElaboratedNetlist(good));
        IVDBInstance *root = database.getRoot(ELABORATED);
        EXPECT_THROW(database.parseElaboratedNetlist(bad), std::out_of_range);
        EXPECT_EQ(database.getTopModule(ELABORATED)->getName(), "good");
        EXPECT_EQ(database.getRoot(ELABORATED), root);
        EXPECT_EQ(treeText(*root), "u: leaf\n");
        EXPECT_TRUE(database.reset(ELABORATED));
        EXPECT_EQ(liveItemCounts(), before);
    }
}

TEST(ElaboratedImport, StandsBesideThePostMapImport)
{
    const Imported design("module leaf() end module mid() l: leaf() end module top() m: mid() end");
    DesignDatabase &database = const_cast<DesignDatabase &>(design.database);
    ASSERT_TRUE(database.parsePostMapNetlist(netlistFromText("module chip() u: leaf() v: leaf() end")));
    EXPECT_EQ(design.tree(), "m: mid\n  l: leaf\n");
    EXPECT_EQ(treeText(*database.getRoot(POST_MAP)), "u: leaf\nv: leaf\n");
    EXPECT_EQ(database.getTopModule(ELABORATED)->getName(), "top");
    EXPECT_EQ(database.getTopModule(POST_MAP)->getName(), "chip");
    EXPECT_NE(database.getRoot(POST_MAP)->getSubInstances()[0]->getModule(),
              database.getRoot(ELABORATED)->getSubInstances()[0]->getSubInstances()[0]->getModule());
}

TEST(ParseHier, RefusesANullNetlist)
{
    LibsetGuard guard;
    DesignDatabase database(true);
    EXPECT_EQ(messageOf<std::invalid_argument>([&] { database.parseHier(nullptr, nullptr); }), "netlist is nullptr");
}

TEST(ParseHier, UnfoldsBelowTheGivenModule)
{
    LibsetGuard guard;
    DesignDatabase database(true);
    Verific::Netlist *top = netlistFromText("module leaf() end module top() u: leaf() end");
    IVDBNetlist *module = database.buildNetlist(top, true, "", "");
    EXPECT_TRUE(database.parseHier(top, module));
    EXPECT_EQ(database.getRoot(ELABORATED)->getModule(), module);
    EXPECT_EQ(treeText(*database.getRoot(ELABORATED)), "u: leaf\n");
    EXPECT_FALSE(database.isSourceLoaded(ELABORATED)) << "only the import stores the top module";
}

} // namespace
} // namespace kvr::netlistdb
