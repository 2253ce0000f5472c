#include "netlist/VDBObjectPool.h"

#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"
#include "tests/support/Sources.h"
#include "tests/support/TreeText.h"

#include <netlistdb/netlistdb.h>

#include <DataBase.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace kvr::netlistdb {
namespace {

using testsupport::ELABORATED;
using testsupport::LibsetGuard;
using testsupport::moduleText;
using testsupport::netlistFromText;
using testsupport::POST_MAP;
using testsupport::treeText;

constexpr const char *RESET_DESIGN = R"(
    module leaf(in a, out q) net n bus [1:0] b net d[0] net d[1] end
    module top(in a) u: leaf(a=a) f: KVR_FF(C=a) end)";

/// Expects that the pool leads from every netlist object of this source to an item of this source and back.
void expectWholePool(const VDBObjectPool &pool, const IVDBInstance *root, const Verific::Netlist *source)
{
    IVDBNetlist *module = root->getModule();
    ASSERT_EQ(pool.find(source), module);
    EXPECT_EQ(pool.find(module), source);
    for (const bool fromBuses : {false, true}) {
        for (IVDBNet *net : module->getNets(fromBuses)) {
            const Verific::Net *object = pool.find(net);
            ASSERT_NE(object, nullptr) << net->getName();
            EXPECT_EQ(object->Owner(), source);
            EXPECT_EQ(pool.find(object), net);
        }
    }
    for (IVDBPort *port : module->getPorts()) {
        EXPECT_EQ(pool.find(source->GetPort(port->getName().c_str())), port);
    }
    for (const IVDBInstance *child : root->getSubInstances()) {
        const Verific::Instance *object = pool.find(child);
        ASSERT_NE(object, nullptr) << child->getName();
        EXPECT_EQ(object->Owner(), source);
        expectWholePool(pool, child, object->View());
    }
}

void expectWholePool(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE type)
{
    expectWholePool(*database.objectPool(type), database.getRoot(type), database.workingCopy(type));
}

TEST(Reset, EmptiesTheSourceAndLeavesTheOther)
{
    LibsetGuard guard;
    Verific::Netlist *source = netlistFromText(RESET_DESIGN);
    DesignDatabase database(true);
    ASSERT_TRUE(database.parseElaboratedNetlist(source));
    ASSERT_TRUE(database.parsePostMapNetlist(source));
    IVDBNetlist *top = database.getTopModule(POST_MAP);
    const auto domains = database.listAllClockDomains(POST_MAP);
    const std::string tree = treeText(*database.getRoot(POST_MAP));

    EXPECT_TRUE(database.reset(ELABORATED));
    EXPECT_FALSE(database.isSourceLoaded(ELABORATED));
    EXPECT_EQ(database.getTopModule(ELABORATED), nullptr);
    EXPECT_EQ(database.getRoot(ELABORATED), nullptr);
    EXPECT_EQ(database.workingCopy(ELABORATED), nullptr);
    EXPECT_TRUE(database.listAllClockDomains(ELABORATED).empty());
    EXPECT_FALSE(database.reset(ELABORATED)) << "there is nothing left to reset";

    EXPECT_TRUE(database.isSourceLoaded(POST_MAP));
    EXPECT_EQ(database.getTopModule(POST_MAP), top);
    EXPECT_EQ(database.listAllClockDomains(POST_MAP), domains);
    EXPECT_EQ(treeText(*database.getRoot(POST_MAP)), tree);
    EXPECT_TRUE(database.reset(POST_MAP));
    EXPECT_TRUE(database.listAllClockDomains(POST_MAP).empty());
}

TEST(Reset, FreesEveryItemOfTheSource)
{
    for (const bool keep : {false, true}) {
        LibsetGuard guard;
        const auto before = liveItemCounts();
        Verific::Netlist *source = netlistFromText(RESET_DESIGN);
        DesignDatabase database(keep);
        ASSERT_TRUE(database.parseElaboratedNetlist(source));
        const auto elaborated = liveItemCounts();
        ASSERT_TRUE(database.parsePostMapNetlist(source));
        EXPECT_TRUE(database.reset(POST_MAP));
        EXPECT_EQ(liveItemCounts(), elaborated);
        EXPECT_TRUE(database.reset(ELABORATED));
        EXPECT_EQ(liveItemCounts(), before);
        EXPECT_TRUE(database.objectPool(ELABORATED)->empty());
        EXPECT_TRUE(database.objectPool(POST_MAP)->empty());
    }
}

TEST(Reset, KeepsLibrariesAndSourceFiles)
{
    LibsetGuard guard;
    Verific::Netlist *source = netlistFromText("module top() at /top.v:1 end");
    DesignDatabase database(true);
    ASSERT_TRUE(database.parseElaboratedNetlist(source));
    EXPECT_TRUE(database.reset(ELABORATED));
    EXPECT_EQ(testsupport::netlistOfCell("top"), source);
    EXPECT_STREQ(Verific::LineFile::GetAbsFileName(source->Linefile()), "/top.v");
}

TEST(Reset, KeepsTheClockCaches)
{
    LibsetGuard guard;
    Verific::Netlist *source = netlistFromText("module top(in clk) f: KVR_FF(C=clk, Q=q) end");
    DesignDatabase database(true);
    ASSERT_TRUE(database.parsePostMapNetlist(source));
    IVDBInstance *root = database.getRoot(POST_MAP);
    IVDBNet *clock = database.getTopModule(POST_MAP)->getNets(false)[0];
    database.addCache(nullptr, {root, clock});
    EXPECT_TRUE(database.reset(POST_MAP));
    EXPECT_EQ(database.drivingClockCache().size(), 1u);
}

TEST(Reset, DropsTheEntriesOfTheSourceFromThePool)
{
    LibsetGuard guard;
    Verific::Netlist *source = netlistFromText(RESET_DESIGN);
    DesignDatabase database(true);
    ASSERT_TRUE(database.parseElaboratedNetlist(source));
    ASSERT_TRUE(database.parsePostMapNetlist(source));
    const VDBObjectPool &pool = *database.objectPool(ELABORATED);
    const IVDBNetlist *top = database.getTopModule(ELABORATED);
    const IVDBInstance *root = database.getRoot(ELABORATED);
    const IVDBInstance *u = root->getSubInstances()[0];
    const IVDBNetlist *leaf = u->getModule();
    const IVDBNet *plain = leaf->getNets(false)[0];
    const IVDBNet *member = leaf->getNets(true)[0];
    ASSERT_NE(pool.find(top), nullptr);
    ASSERT_NE(pool.find(u), nullptr);
    ASSERT_NE(pool.find(member), nullptr);
    EXPECT_TRUE(database.reset(ELABORATED));
    EXPECT_EQ(pool.find(top), nullptr);
    EXPECT_EQ(pool.find(leaf), nullptr);
    EXPECT_EQ(pool.find(u), nullptr);
    EXPECT_EQ(pool.find(plain), nullptr);
    EXPECT_EQ(pool.find(member), nullptr);
}

TEST(Reset, LeavesSharedNetlistsToTheRemainingSource)
{
    for (const bool elaboratedFirst : {true, false}) {
        LibsetGuard guard;
        Verific::Netlist *source = netlistFromText(RESET_DESIGN);
        DesignDatabase database(true);
        if (elaboratedFirst) {
            ASSERT_TRUE(database.parseElaboratedNetlist(source));
        }
        ASSERT_TRUE(database.parsePostMapNetlist(source));
        if (!elaboratedFirst) {
            ASSERT_TRUE(database.parseElaboratedNetlist(source));
        }
        const auto freed = elaboratedFirst ? ELABORATED : POST_MAP;
        const auto remaining = elaboratedFirst ? POST_MAP : ELABORATED;
        const Verific::Netlist *leaf = testsupport::netlistOfCell("leaf");
        for (const auto type : {freed, remaining}) {
            const IVDBNetlist *const module = database.getRoot(type)->getSubInstances()[0]->getModule();
            ASSERT_EQ(database.objectPool(type)->find(leaf), module);
        }
        EXPECT_TRUE(database.reset(freed));
        expectWholePool(database, remaining);
    }
}

TEST(Reset, OfTheSourceImportedLastLeavesTheOtherWhole)
{
    LibsetGuard guard;
    Verific::Netlist *source = netlistFromText(RESET_DESIGN);
    DesignDatabase database(true);
    ASSERT_TRUE(database.parseElaboratedNetlist(source));
    ASSERT_TRUE(database.parsePostMapNetlist(source));
    EXPECT_TRUE(database.reset(POST_MAP));
    expectWholePool(database, ELABORATED);
}

TEST(Reset, KeepsPortsOfANetlistThatChangedBetweenTheImports)
{
    LibsetGuard guard;
    Verific::Netlist *source = netlistFromText(RESET_DESIGN);
    Verific::Netlist *leaf = testsupport::netlistOfCell("leaf");
    const Verific::Port *a = testsupport::portOf(leaf, "a");
    DesignDatabase database(true);
    ASSERT_TRUE(database.parseElaboratedNetlist(source));
    leaf->Add(new Verific::Port("late", Verific::DIR_IN));
    ASSERT_TRUE(database.parsePostMapNetlist(source));
    EXPECT_TRUE(database.reset(ELABORATED));
    const VDBObjectPool &pool = *database.objectPool(POST_MAP);
    const IVDBNetlist *const module = database.getRoot(POST_MAP)->getSubInstances()[0]->getModule();
    EXPECT_EQ(pool.find(a), module->getPorts()[0]);
    EXPECT_EQ(pool.find(leaf), module);
    EXPECT_NE(pool.find(testsupport::portOf(leaf, "late")), nullptr);
}

TEST(Reset, DoesNotNeedTheNetlistsBelowTheTopAnyMore)
{
    const auto before = liveItemCounts();
    {
        LibsetGuard guard;
        Verific::Netlist *source = netlistFromText(RESET_DESIGN);
        DesignDatabase database(true);
        ASSERT_TRUE(database.parseElaboratedNetlist(source));
        ASSERT_TRUE(database.parsePostMapNetlist(source));
        Verific::Libset::Reset();
        EXPECT_TRUE(database.reset(ELABORATED));
        EXPECT_TRUE(database.reset(POST_MAP));
        EXPECT_TRUE(database.objectPool(ELABORATED)->empty());
        EXPECT_TRUE(database.objectPool(POST_MAP)->empty());
    }
    EXPECT_EQ(liveItemCounts(), before);
}

TEST(Reset, ThenImportingAgainIsLikeAFreshDatabaseEveryTime)
{
    LibsetGuard guard;
    const auto before = liveItemCounts();
    Verific::Netlist *source = netlistFromText(RESET_DESIGN);
    DesignDatabase database(true);
    std::string tree;
    for (int round = 0; round < 20; ++round) {
        ASSERT_TRUE(database.parseElaboratedNetlist(source));
        ASSERT_TRUE(database.parsePostMapNetlist(source));
        const std::string now =
            treeText(*database.getRoot(ELABORATED)) + moduleText(*database.getTopModule(ELABORATED));
        EXPECT_TRUE(tree.empty() || tree == now);
        tree = now;
        expectWholePool(database, ELABORATED);
        EXPECT_TRUE(database.reset(ELABORATED));
        expectWholePool(database, POST_MAP);
        EXPECT_TRUE(database.reset(POST_MAP));
        EXPECT_EQ(liveItemCounts(), before);
    }
}

TEST(Reset, DropsRegisteredOccurrencesWithTheirInstances)
{
    LibsetGuard guard;
    Verific::Netlist *source = netlistFromText(RESET_DESIGN);
    DesignDatabase database(true);
    ASSERT_TRUE(database.parseElaboratedNetlist(source));
    ASSERT_TRUE(database.parsePostMapNetlist(source));
    VDBObjectPool &pool = *database.objectPool(ELABORATED);
    IVDBInstance *u = database.getRoot(ELABORATED)->getSubInstances()[0];
    const Verific::Instance *object = pool.find(u);
    pool.registerOccurrence(object, u);
    EXPECT_TRUE(database.reset(ELABORATED));
    EXPECT_EQ(pool.find(object), nullptr);
}

TEST(Generation, ChangesWithEveryImportAndResetOfItsSourceAlone)
{
    const LibsetGuard guard;
    DesignDatabase database(true);
    Verific::Netlist *const top = netlistFromText(RESET_DESIGN);
    std::vector<std::uint64_t> seen{database.generation(ELABORATED)};
    const auto isNew = [&] {
        const std::uint64_t now = database.generation(ELABORATED);
        const bool wasSeen = std::find(seen.begin(), seen.end(), now) != seen.end();
        seen.push_back(now);
        return !wasSeen;
    };
    database.parseElaboratedNetlist(top);
    EXPECT_TRUE(isNew());
    database.parseElaboratedNetlist(top);
    EXPECT_TRUE(isNew());
    database.reset(ELABORATED);
    EXPECT_TRUE(isNew());
    EXPECT_FALSE(database.reset(ELABORATED));
    EXPECT_FALSE(isNew());
    database.parsePostMapNetlist(top);
    EXPECT_FALSE(isNew());
    EXPECT_EQ(database.generation(static_cast<IDesignDatabase::SOURCE_TYPE>(3)), 0U);
}

TEST(SourceObjects, LeadFromItemsToTheWorkingCopyAndBack)
{
    const LibsetGuard guard;
    DesignDatabase database(true);
    database.parseElaboratedNetlist(netlistFromText(RESET_DESIGN));
    const Verific::Netlist *const copy = database.workingCopy(ELABORATED);
    const Verific::Net *const net = copy->GetNet("a");
    IVDBNet *const item = database.netItem(net, ELABORATED);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->getName(), "a");
    EXPECT_EQ(database.sourceNet(item, ELABORATED), net);
    EXPECT_EQ(database.netItem(net, POST_MAP), nullptr);
    EXPECT_EQ(database.sourceNet(item, POST_MAP), nullptr);
    IVDBInstance *const root = database.getRoot(ELABORATED);
    EXPECT_EQ(database.sourceInstance(root->getSubInstances()[0], ELABORATED), copy->GetInst("u"));
    EXPECT_EQ(database.sourceInstance(root, ELABORATED), nullptr);
    DesignDatabase forgetful(false);
    forgetful.parseElaboratedNetlist(testsupport::netlistOfCell("top"));
    EXPECT_EQ(forgetful.sourceInstance(forgetful.getRoot(ELABORATED)->getSubInstances()[0], ELABORATED), nullptr);
}

} // namespace
} // namespace kvr::netlistdb
