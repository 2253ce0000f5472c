// The end of things when no memory is left: every allocation fails while they are deleted.

#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"
#include "tests/support/Sources.h"
#include "tests/support/failing_allocator/FailingAllocator.h"

#include <netlistdb/DesignDatabase.h>
#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNetlist.h>
#include <netlistdb/VDBInstance.h>
#include <netlistdb/VDBLiveItems.h>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace kvr::netlistdb {
namespace {

using testsupport::ELABORATED;
using testsupport::failAllocationAfter;
using testsupport::failNoAllocation;
using testsupport::Failures;
using testsupport::LibsetGuard;
using testsupport::netlistFromText;
using testsupport::POST_MAP;

constexpr const char *DELETED_DESIGN = R"(
    register DFF(in clk, d, out q) clock=clk end
    operator INV(in a, out o) end
    module leaf(in ck, d, out q) bus [3:0] b r: DFF(clk=ck, d=d, q=x) i: INV(a=x, o=q) end
    module mid(in ck, d, out q) l: leaf(ck=ck, d=d, q=y) m: leaf(ck=ck, d=y, q=q) end
    module top(in clk, d, out q) u: mid(ck=clk, d=d, q=q) f: KVR_FF(C=clk, D=q, Q=z) g: KVR_FF(C=z, D=d) end)";

/// Calls @p act while no allocation succeeds.
template <typename Act> void withoutMemory(Act act)
{
    failAllocationAfter(0, Failures::ALL);
    act();
    failNoAllocation();
}

void askForAllClocks(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE type)
{
    std::vector<IVDBInstance *> instances{database.getRoot(type)};
    for (std::size_t at = 0; at < instances.size(); ++at) {
        const std::vector<IVDBInstance *> children = instances[at]->getSubInstances();
        instances.insert(instances.end(), children.begin(), children.end());
        for (const bool fromBuses : {false, true}) {
            for (IVDBNet *net : instances[at]->getModule()->getNets(fromBuses)) {
                database.findDrivingClockDomains(instances[at], net, type);
            }
        }
    }
}

TEST(DestructionWithoutMemory, OfADatabaseInUse)
{
    const auto before = liveItemCounts();
    for (const bool keep : {true, false}) {
        LibsetGuard guard;
        Verific::Netlist *const netlist = netlistFromText(DELETED_DESIGN);
        auto database = std::make_unique<DesignDatabase>(keep);
        ASSERT_TRUE(database->parseElaboratedNetlist(netlist));
        ASSERT_TRUE(database->parsePostMapNetlist(netlist));
        askForAllClocks(*database, ELABORATED);
        askForAllClocks(*database, POST_MAP);
        withoutMemory([&] { database.reset(); });
        EXPECT_EQ(liveItemCounts(), before);
    }
}

TEST(DestructionWithoutMemory, OfOneSourceAfterTheOther)
{
    const auto before = liveItemCounts();
    for (const auto first : {ELABORATED, POST_MAP}) {
        LibsetGuard guard;
        Verific::Netlist *const netlist = netlistFromText(DELETED_DESIGN);
        DesignDatabase database(true);
        ASSERT_TRUE(database.parseElaboratedNetlist(netlist));
        ASSERT_TRUE(database.parsePostMapNetlist(netlist));
        askForAllClocks(database, ELABORATED);
        askForAllClocks(database, POST_MAP);
        bool freedBoth = false;
        withoutMemory(
            [&] { freedBoth = database.reset(first) && database.reset(first == ELABORATED ? POST_MAP : ELABORATED); });
        EXPECT_TRUE(freedBoth);
        EXPECT_EQ(liveItemCounts(), before);
    }
}

TEST(DestructionWithoutMemory, OfATreeOfManyLevels)
{
    constexpr unsigned LEVELS = 100000;
    const auto before = liveItemCounts();
    auto root = std::make_unique<VDBInstance>(nullptr, nullptr);
    VDBInstance *lowest = root.get();
    for (unsigned level = 0; level < LEVELS; ++level) {
        auto *const child = new VDBInstance(nullptr, lowest);
        lowest->addSubInstance(new VDBInstance(nullptr, lowest));
        lowest->addSubInstance(child);
        lowest->addSubInstance(nullptr);
        lowest->addSubInstance(new VDBInstance(nullptr, lowest));
        lowest = child;
    }
    EXPECT_EQ(liveItemCounts()[2] - before[2], 3 * LEVELS + 1);
    withoutMemory([&] { root.reset(); });
    EXPECT_EQ(liveItemCounts(), before);
}

/// Notes, while it is destroyed, what its owner looks like.
class Witness : public VDBInstance {
  public:
    Witness(IVDBInstance *owner, std::vector<bool> &forgot)
        : VDBInstance(nullptr, owner), m_owner(owner), m_forgot(forgot)
    {
    }
    ~Witness() override
    {
        m_forgot.push_back(m_owner->getOwnerInstance() == nullptr && m_owner->getModule() == nullptr &&
                           m_owner->getDepth() == 0);
    }

  private:
    IVDBInstance *m_owner;
    std::vector<bool> &m_forgot;
};

TEST(DestructionWithoutMemory, ForgetsOwnerAndModuleBeforeTheSubInstancesGo)
{
    std::vector<bool> forgot;
    auto root = std::make_unique<VDBInstance>(nullptr, nullptr);
    auto *const child = new VDBInstance(nullptr, root.get());
    root->addSubInstance(child);
    for (VDBInstance *owner : {child, root.get()}) {
        owner->addSubInstance(new Witness(owner, forgot));
        auto *const sibling = new VDBInstance(nullptr, owner);
        owner->addSubInstance(sibling);
        sibling->addSubInstance(new Witness(sibling, forgot));
        owner->addSubInstance(new Witness(owner, forgot));
    }
    root.reset();
    EXPECT_EQ(forgot, std::vector<bool>(6, true));
}

} // namespace
} // namespace kvr::netlistdb
