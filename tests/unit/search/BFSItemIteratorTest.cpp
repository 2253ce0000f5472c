#include <netlistdb/BFSItemIterator.h>
#include <netlistdb/VDBInstance.h>
#include <netlistdb/VDBNetlist.h>

#include "WalkText.h"
#include "tests/support/MockItems.h"
#include "tests/support/Throws.h"
#include "tests/support/VirtualSlots.h"

#include <DataBase.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace kvr::netlistdb {
namespace {

using testsupport::messageOf;
using testsupport::MockInstance;
using testsupport::MockNet;
using testsupport::MockNetBus;
using testsupport::MockNetlist;
using testsupport::MockTree;
using testsupport::walkText;
using testsupport::wordOf;

/// top(b0 n0 p0) with children u1 and u2 of module leaf(b1 n1 p1), each with a child of module cell(n2).
class BFSItemIteratorTest : public testing::Test {
  protected:
    BFSItemIteratorTest()
    {
        fill(topModule, "0");
        fill(leafModule, "1");
        tree.net(cellModule, "n2");
        param.startItem = &top;
    }

    void fill(MockNetlist &module, const std::string &suffix)
    {
        tree.port(module, "p" + suffix);
        tree.net(module, "n" + suffix);
        tree.bus(module, "b" + suffix);
    }

    std::string walk() const
    {
        BFSItemIterator iterator(nullptr, param);
        return walkText(iterator);
    }

    MockTree tree;
    MockNetlist &topModule = tree.module("top");
    MockNetlist &leafModule = tree.module("leaf");
    MockNetlist &cellModule = tree.module("cell", false);
    MockInstance &top = tree.instance("", &topModule);
    MockInstance &u1 = tree.instance("u1", &leafModule, &top);
    MockInstance &u2 = tree.instance("u2", &leafModule, &top);
    MockInstance &c1 = tree.instance("c1", &cellModule, &u1);
    MockInstance &c2 = tree.instance("c2", &cellModule, &u2);
    VDBSearchParam param;
};

TEST_F(BFSItemIteratorTest, ListsLevelByLevelEachInstanceWithBusesThenNetsThenPorts)
{
    EXPECT_EQ(walk(), "@ =b0 n0 >p0 @u1 =b1 n1 >p1 @u2 =b1 n1 >p1 @c1 n2 @c2 n2");
}

TEST_F(BFSItemIteratorTest, ListsInstancesAloneLevelByLevel)
{
    param.itemTypes = ITEM_INSTANCE;
    EXPECT_EQ(walk(), "@ @u1 @u2 @c1 @c2");
}

TEST_F(BFSItemIteratorTest, StaysInTheStartInstanceWithoutTheInstanceBit)
{
    param.itemTypes = ITEM_NET;
    EXPECT_EQ(walk(), "@ n0");
    param.itemTypes = ITEM_NET_BUS;
    EXPECT_EQ(walk(), "@ =b0");
    param.itemTypes = ITEM_PORT;
    EXPECT_EQ(walk(), "@ >p0");
    param.itemTypes = 0;
    EXPECT_EQ(walk(), "@");
}

TEST_F(BFSItemIteratorTest, DoesNotConsultTheOtherBits)
{
    param.itemTypes = ITEM_NETLIST | ITEM_CLOCK_DOMAIN | 0x100U;
    EXPECT_EQ(walk(), "@");
    param.itemTypes = 0xFFFFFFFFU;
    EXPECT_EQ(walk(), "@ =b0 n0 >p0 @u1 =b1 n1 >p1 @u2 =b1 n1 >p1 @c1 n2 @c2 n2");
}

TEST_F(BFSItemIteratorTest, StartsBelowAnyInstance)
{
    param.startItem = &u2;
    EXPECT_EQ(walk(), "@u2 =b1 n1 >p1 @c2 n2");
}

TEST_F(BFSItemIteratorTest, IsAtItsEndAtOnceUnlessTheStartIsAnInstance)
{
    for (IVDBItem *start : {static_cast<IVDBItem *>(nullptr), static_cast<IVDBItem *>(topModule.nets[0]),
                            static_cast<IVDBItem *>(&topModule)}) {
        param.startItem = start;
        BFSItemIterator iterator(nullptr, param);
        EXPECT_TRUE(iterator.isEnd());
        EXPECT_EQ(iterator.getCurrent(), nullptr);
        iterator.next();
        EXPECT_TRUE(iterator.isEnd());
    }
}

TEST_F(BFSItemIteratorTest, StaysAtTheEnd)
{
    BFSItemIterator iterator(nullptr, param);
    walkText(iterator);
    EXPECT_NO_THROW(iterator.next());
    EXPECT_TRUE(iterator.isEnd());
    EXPECT_EQ(iterator.getCurrent(), nullptr);
}

TEST_F(BFSItemIteratorTest, KeepsACopyOfTheParameters)
{
    BFSItemIterator iterator(nullptr, param);
    param.itemTypes = 0;
    param.startItem = nullptr;
    EXPECT_EQ(walkText(iterator), "@ =b0 n0 >p0 @u1 =b1 n1 >p1 @u2 =b1 n1 >p1 @c1 n2 @c2 n2");
}

TEST_F(BFSItemIteratorTest, LeavesOutModulesThatAreNotUserDeclaredWithAllBelow)
{
    MockInstance &below = tree.instance("below", &leafModule, &c1);
    EXPECT_NE(walk().find("@below"), std::string::npos);
    param.userModulesOnly = true;
    EXPECT_EQ(walk(), "@ =b0 n0 >p0 @u1 =b1 n1 >p1 @u2 =b1 n1 >p1");
    param.startItem = &c1;
    EXPECT_EQ(walk(), "");
    param.startItem = &below;
    EXPECT_EQ(walk(), "@below =b1 n1 >p1");
}

TEST_F(BFSItemIteratorTest, ListsACollapsedInstanceWithoutMembers)
{
    param.collapseNonUserModules = true;
    EXPECT_EQ(walk(), "@ =b0 n0 >p0 @u1 =b1 n1 >p1 @u2 =b1 n1 >p1 @c1 @c2");
    param.startItem = &c1;
    EXPECT_EQ(walk(), "@c1");
}

TEST_F(BFSItemIteratorTest, ShowsOfTheChildrenOfACollapsedInstanceOnlyTheMembersOfUserModules)
{
    MockInstance &user = tree.instance("user", &leafModule, &c1);
    tree.instance("generated", &cellModule, &c1);
    tree.instance("unreached", &leafModule, &user);
    param.collapseNonUserModules = true;
    EXPECT_EQ(walk(), "@ =b0 n0 >p0 @u1 =b1 n1 >p1 @u2 =b1 n1 >p1 @c1 @c2 =b1 n1 >p1");
}

TEST_F(BFSItemIteratorTest, AsksTheOwnerOfAnInstanceWhetherItIsCollapsed)
{
    param.collapseNonUserModules = true;
    u1.owner = &c2;
    u2.owner = nullptr;
    EXPECT_EQ(walk(), "@ =b0 n0 >p0 =b1 n1 >p1 @u2 =b1 n1 >p1 @c2");
}

TEST_F(BFSItemIteratorTest, LeavesOutACollapsedInstanceWhenBothFlagsAreSet)
{
    tree.instance("user", &leafModule, &c1);
    param.collapseNonUserModules = true;
    param.userModulesOnly = true;
    EXPECT_EQ(walk(), "@ =b0 n0 >p0 @u1 =b1 n1 >p1 @u2 =b1 n1 >p1");
}

TEST_F(BFSItemIteratorTest, LeavesOutNetsAndBusesThatAreNotUserDeclared)
{
    tree.net(topModule, "gen", false);
    tree.bus(topModule, "genbus", false);
    param.itemTypes = ITEM_NET | ITEM_NET_BUS | ITEM_PORT;
    EXPECT_EQ(walk(), "@ =b0 =genbus n0 gen >p0");
    param.userNetsOnly = true;
    EXPECT_EQ(walk(), "@ =b0 n0 >p0");
}

TEST_F(BFSItemIteratorTest, LeavesOutThePortsOfModulesThatAreNotUserDeclared)
{
    tree.port(cellModule, "p2");
    param.itemTypes = ITEM_INSTANCE | ITEM_PORT;
    EXPECT_EQ(walk(), "@ >p0 @u1 >p1 @u2 >p1 @c1 >p2 @c2 >p2");
    param.userPortsOnly = true;
    EXPECT_EQ(walk(), "@ >p0 @u1 >p1 @u2 >p1 @c1 @c2");
    param.startItem = &c1;
    EXPECT_EQ(walk(), "@c1");
}

TEST_F(BFSItemIteratorTest, SkipsNullNetsAndBusesAndKeepsNullPorts)
{
    topModule.nets.insert(topModule.nets.begin(), nullptr);
    topModule.buses.push_back(nullptr);
    topModule.ports.push_back(nullptr);
    tree.port(topModule, "last");
    param.itemTypes = ITEM_NET | ITEM_NET_BUS | ITEM_PORT;
    EXPECT_EQ(walk(), "@ =b0 n0 >p0 null >last");
    param.sortItems = true;
    param.nameOrder = SORT_ASCENDING;
    param.widthOrder = SORT_ASCENDING;
    EXPECT_EQ(walk(), "@ n0 =b0 >p0 null >last");
}

TEST_F(BFSItemIteratorTest, SkipsNullSubInstances)
{
    top.children.insert(top.children.begin(), nullptr);
    u2.children.push_back(nullptr);
    param.itemTypes = ITEM_INSTANCE;
    EXPECT_EQ(walk(), "@ @u1 @u2 @c1 @c2");
}

TEST_F(BFSItemIteratorTest, ThrowsWhenItStepsPastAnInstanceWithoutModuleAndStaysThere)
{
    u1.module = nullptr;
    param.itemTypes = ITEM_INSTANCE | ITEM_NET;
    BFSItemIterator iterator(nullptr, param);
    iterator.next();
    iterator.next();
    ASSERT_EQ(iterator.getCurrent(), &u1);
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_EQ(messageOf<std::runtime_error>([&] { iterator.next(); }), "Unknown item");
        EXPECT_EQ(iterator.getCurrent(), &u1);
    }
    u1.module = &leafModule;
    EXPECT_EQ(walkText(iterator), "@u1 @u2 n1 @c1 n2 @c2 n2");
}

TEST_F(BFSItemIteratorTest, AsksForTheModuleWhenItStepsPastTheInstance)
{
    param.itemTypes = ITEM_INSTANCE;
    BFSItemIterator iterator(nullptr, param);
    iterator.next();
    ASSERT_EQ(iterator.getCurrent(), &u1);
    u1.module = nullptr;
    EXPECT_EQ(messageOf<std::runtime_error>([&] { iterator.next(); }), "Unknown item");
    EXPECT_EQ(iterator.getCurrent(), &u1);
}

TEST_F(BFSItemIteratorTest, WalksTheSubInstancesThatAnInstanceHasWhenItStepsPastIt)
{
    param.itemTypes = ITEM_INSTANCE;
    BFSItemIterator iterator(nullptr, param);
    MockInstance &before = tree.instance("before", &leafModule, &top);
    iterator.next();
    tree.instance("after", &leafModule, &top);
    iterator.fetchMoreItem(&before);
    tree.instance("below", &leafModule, &before);
    EXPECT_EQ(walkText(iterator), "@u1 @u2 @before @c1 @c2 @below");
}

TEST_F(BFSItemIteratorTest, WalksTheSubInstancesOfOurOwnClassThatWereThereWhenItSteppedPast)
{
    VDBInstance root(&topModule, nullptr);
    const auto grow = [&](unsigned count) {
        for (; count > 0; --count) {
            root.addSubInstance(new VDBInstance(&cellModule, &root));
        }
    };
    grow(3);
    param.startItem = &root;
    param.itemTypes = ITEM_INSTANCE;
    BFSItemIterator iterator(nullptr, param);
    iterator.next();
    grow(1000);
    EXPECT_EQ(walkText(iterator), "@ @ @");
    EXPECT_EQ(root.getSubInstances().size(), 1003U);
}

TEST_F(BFSItemIteratorTest, WalksTheRightSubInstancesWhenInstancesShareOneList)
{
    /// Fills one list for whoever is asked.
    class SharingInstance : public MockInstance {
      public:
        SharingInstance(const std::string &name, MockNetlist *itsModule, MockInstance *parent,
                        std::vector<IVDBInstance *> &list)
            : MockInstance(name, itsModule, parent), m_list(list)
        {
        }
        const std::vector<IVDBInstance *> &getSubInstances() const override { return m_list = children; }

      private:
        std::vector<IVDBInstance *> &m_list;
    };
    std::vector<IVDBInstance *> list;
    SharingInstance root("root", &topModule, nullptr, list);
    SharingInstance left("left", &topModule, &root, list);
    SharingInstance right("right", &topModule, &root, list);
    root.children = {&left, &right};
    left.children = {&u1, &c1};
    right.children = {&u2};
    param.startItem = &root;
    param.itemTypes = ITEM_INSTANCE;
    EXPECT_EQ(walk(), "@root @left @right @u1 @c1 @u2 @c1 @c2");
}

TEST_F(BFSItemIteratorTest, LooksForTheModuleBeforeTheInstanceBit)
{
    BFSItemIterator iterator(nullptr, param);
    VDBSearchParam flat = param;
    flat.itemTypes = 0;
    BFSItemIterator flatIterator(nullptr, flat);
    u1.module = nullptr;
    EXPECT_EQ(messageOf<std::runtime_error>([&] { iterator.fetchMoreItem(&u1); }), "Unknown item");
    EXPECT_EQ(messageOf<std::runtime_error>([&] { flatIterator.fetchMoreItem(&u1); }), "Unknown item");
    EXPECT_EQ(walkText(flatIterator), "@");
}

TEST_F(BFSItemIteratorTest, FetchesTheChildrenOfAnyInstanceBehindWhatIsWaiting)
{
    param.itemTypes = ITEM_INSTANCE | ITEM_NET;
    BFSItemIterator iterator(nullptr, param);
    iterator.fetchMoreItem(&u2);
    iterator.fetchMoreItem(nullptr);
    iterator.fetchMoreItem(&topModule);
    iterator.fetchMoreItem(topModule.nets[0]);
    iterator.fetchMoreItem(&c1);
    EXPECT_EQ(walkText(iterator), "@ n0 @c2 n2 @u1 n1 @u2 n1 @c1 n2 @c2 n2");
    iterator.fetchMoreItem(&u1);
    EXPECT_FALSE(iterator.isEnd());
    EXPECT_EQ(walkText(iterator), "@c1 n2");
    iterator.fetchMoreItem(&c1);
    EXPECT_TRUE(iterator.isEnd());
}

TEST_F(BFSItemIteratorTest, TellsHundredsOfModulesApart)
{
    constexpr int count = 500;
    std::vector<MockNetlist *> modules;
    for (int i = 0; i < count; ++i) {
        modules.push_back(&tree.module("m", i % 2 == 0));
        tree.net(*modules.back(), "n" + std::to_string(i));
    }
    std::string expected = "@c1 n2";
    for (int i = 0; i < 2 * count; ++i) {
        const std::string name = std::to_string(i);
        tree.instance(name, modules[static_cast<std::size_t>(i % count)], &c1);
        expected += " @" + name + " n" + std::to_string(i % count);
    }
    param.startItem = &c1;
    EXPECT_EQ(walk(), expected);
}

TEST_F(BFSItemIteratorTest, OnlyKeepsTheContextForOthers)
{
    BFSItemIterator iterator(nullptr, param);
    EXPECT_EQ(iterator.getContext(), nullptr);
    iterator.next();
    EXPECT_EQ(iterator.getContext(), nullptr);
    iterator.setContext(&u2);
    iterator.next();
    EXPECT_EQ(iterator.getContext(), &u2);
    iterator.setContext(nullptr);
    EXPECT_EQ(iterator.getContext(), nullptr);
}

TEST_F(BFSItemIteratorTest, LooksAtNothingBeforeItsTurn)
{
    BFSItemIterator iterator(nullptr, param);
    while (iterator.getCurrent() != &u1) {
        iterator.next();
    }
    EXPECT_EQ(leafModule.looks, 0);
    EXPECT_EQ(cellModule.looks, 0);
    EXPECT_EQ(walkText(iterator), "@u1 =b1 n1 >p1 @u2 =b1 n1 >p1 @c1 n2 @c2 n2");
}

/// A module of our own class, made without a netlist database's names: `=b`, `n0`, `n1`.
class OwnModuleTest : public testing::Test {
  protected:
    template <typename Module> static void fill(Module &module)
    {
        module.addNetBus(new MockNetBus({"b", true, 1, ITEM_NET_BUS}));
        module.addNet(new MockNet({"n0", true, 1, ITEM_NET}));
        module.addNet(new MockNet({"n1", true, 1, ITEM_NET}));
    }

    const Verific::Netlist netlist{"netlist"};
};

TEST_F(OwnModuleTest, WalksTheNetsThatAModuleOfOurOwnClassHadWhenTheWalkCameToThem)
{
    VDBNetlist module(&netlist, "module", "library");
    fill(module);
    const VDBInstance root(&module, nullptr);
    VDBSearchParam param;
    param.startItem = const_cast<VDBInstance *>(&root);
    BFSItemIterator iterator(nullptr, param);
    iterator.next();
    ASSERT_EQ(wordOf(iterator.getCurrent()), "=b");
    for (int count = 0; count < 1000; ++count) {
        module.addNetBus(new MockNetBus({"later", true, 1, ITEM_NET_BUS}));
        module.addNet(new MockNet({"later", true, 1, ITEM_NET}));
    }
    EXPECT_EQ(walkText(iterator), "=b n0 n1");
    BFSItemIterator again(nullptr, param);
    again.next();
    ASSERT_EQ(wordOf(again.getCurrent()), "=b");
    again.next();
    EXPECT_EQ(wordOf(again.getCurrent()), "=later");
}

TEST_F(OwnModuleTest, WalksEachKindAloneInAModuleOfOurOwnClass)
{
    VDBNetlist module(&netlist, "module", "library");
    fill(module);
    VDBInstance root(&module, nullptr);
    VDBSearchParam param;
    param.startItem = &root;
    const auto walk = [&](std::uint32_t types) {
        param.itemTypes = types;
        BFSItemIterator iterator(nullptr, param);
        return walkText(iterator);
    };
    EXPECT_EQ(walk(ITEM_NET), "@ n0 n1");
    EXPECT_EQ(walk(ITEM_NET_BUS), "@ =b");
    EXPECT_EQ(walk(ITEM_PORT), "@");
}

TEST_F(OwnModuleTest, AsksAClassDerivedFromOursForItsNets)
{
    class Reversed : public VDBNetlist {
      public:
        using VDBNetlist::VDBNetlist;
        std::vector<IVDBNet *> getNets(bool fromBuses) const override
        {
            std::vector<IVDBNet *> nets = VDBNetlist::getNets(fromBuses);
            return {nets.rbegin(), nets.rend()};
        }
    };
    Reversed module(&netlist, "module", "library");
    fill(module);
    VDBInstance root(&module, nullptr);
    VDBSearchParam param;
    param.startItem = &root;
    BFSItemIterator iterator(nullptr, param);
    EXPECT_EQ(walkText(iterator), "@ =b n1 n0");
}

class MemberOrderTest : public testing::Test {
  protected:
    MemberOrderTest()
    {
        param.startItem = &top;
        param.sortItems = true;
    }

    std::string walk() const
    {
        BFSItemIterator iterator(nullptr, param);
        return walkText(iterator);
    }

    MockTree tree;
    MockNetlist &module = tree.module("top");
    MockInstance &top = tree.instance("top", &module);
    VDBSearchParam param;
};

TEST_F(MemberOrderTest, SortsNamesWithNumbersByValueAndLettersWithoutCase)
{
    tree.net(module, "a10");
    tree.net(module, "a2");
    tree.net(module, "B1");
    param.nameOrder = SORT_ASCENDING;
    EXPECT_EQ(walk(), "@top a2 a10 B1");
    param.nameOrder = SORT_DESCENDING;
    EXPECT_EQ(walk(), "@top B1 a10 a2");
}

TEST_F(MemberOrderTest, TakesEveryOtherOrderForAscending)
{
    tree.net(module, "b", true, 1);
    tree.net(module, "a", true, 2);
    param.nameOrder = static_cast<SortOrder>(7);
    EXPECT_EQ(walk(), "@top a b");
    param.nameOrder = SORT_NONE;
    param.widthOrder = static_cast<SortOrder>(0xFFFFFFFFU);
    EXPECT_EQ(walk(), "@top b a");
    param.widthOrder = static_cast<SortOrder>(3);
    EXPECT_EQ(walk(), "@top b a");
}

TEST_F(MemberOrderTest, SortsNothingUnlessSortingIsEnabled)
{
    tree.net(module, "b", true, 2);
    tree.net(module, "a", true, 1);
    param.sortItems = false;
    param.nameOrder = SORT_ASCENDING;
    param.widthOrder = SORT_ASCENDING;
    EXPECT_EQ(walk(), "@top b a");
    param.sortItems = true;
    param.nameOrder = SORT_NONE;
    param.widthOrder = SORT_NONE;
    EXPECT_EQ(walk(), "@top b a");
}

TEST_F(MemberOrderTest, MixesBusesAndNetsAndLeavesPortsInTheirOrder)
{
    tree.bus(module, "m");
    tree.net(module, "z");
    tree.net(module, "a");
    tree.port(module, "q");
    tree.port(module, "c");
    param.nameOrder = SORT_ASCENDING;
    EXPECT_EQ(walk(), "@top a =m z >q >c");
}

TEST_F(MemberOrderTest, SortsWidthsAsUnsignedNumbers)
{
    tree.bus(module, "huge", true, 0x8000000000000000ULL);
    tree.bus(module, "two", true, 2);
    tree.net(module, "one", true, 1);
    tree.bus(module, "most", true, 0xFFFFFFFFFFFFFFFFULL);
    tree.bus(module, "wide", true, 0x100000000ULL);
    param.widthOrder = SORT_ASCENDING;
    EXPECT_EQ(walk(), "@top one =two =wide =huge =most");
    param.widthOrder = SORT_DESCENDING;
    EXPECT_EQ(walk(), "@top =most =huge =wide =two one");
}

TEST_F(MemberOrderTest, LetsTheWidthDecideWhenBothOrdersAreGiven)
{
    tree.bus(module, "a", true, 3);
    tree.bus(module, "b", true, 1);
    tree.bus(module, "c", true, 2);
    param.nameOrder = SORT_DESCENDING;
    param.widthOrder = SORT_ASCENDING;
    EXPECT_EQ(walk(), "@top =b =c =a");
}

TEST_F(MemberOrderTest, LeavesOutGeneratedMembersOfASortedListToo)
{
    tree.net(module, "b");
    tree.net(module, "a", false);
    tree.bus(module, "c", false);
    param.nameOrder = SORT_ASCENDING;
    param.userNetsOnly = true;
    EXPECT_EQ(walk(), "@top b");
}

TEST(TreeIterator, HasItsOperationsInOrder)
{
    EXPECT_EQ(testsupport::virtualSlot(&TreeIterator::getCurrent), 2U);
    EXPECT_EQ(testsupport::virtualSlot(&TreeIterator::next), 3U);
    EXPECT_EQ(testsupport::virtualSlot(&TreeIterator::isEnd), 4U);
    EXPECT_EQ(testsupport::virtualSlot(&TreeIterator::getContext), 5U);
    EXPECT_EQ(testsupport::virtualSlot(&TreeIterator::setContext), 6U);
}

} // namespace
} // namespace kvr::netlistdb
