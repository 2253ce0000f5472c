#include "netlist/VDBObjectPool.h"

#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"
#include "tests/support/ScratchFile.h"
#include "tests/support/Sources.h"
#include "tests/support/TreeText.h"
#include "tests/support/failing_allocator/FailingAllocator.h"

#include <netlistdb/netlistdb.h>

#include <DataBase.h>

#include <gtest/gtest.h>

#include <string>

namespace kvr::netlistdb {
namespace {

using testsupport::ELABORATED;
using testsupport::failAllocation;
using testsupport::LibsetGuard;
using testsupport::netlistFromText;
using testsupport::Outcome;
using testsupport::POST_MAP;
using testsupport::treeText;

constexpr const char *DESIGN = R"(
    module leaf(in a_port_with_a_long_name, out q) at /some/where/leaf.v:1
        net a_net_with_a_rather_long_name at /some/where/leaf.v:2
        bus [1:0] a_bus_with_a_rather_long_name
        net a_group_with_a_rather_long_name[0]
        net a_group_with_a_rather_long_name[1]
        net a_group_with_a_rather_long_name[3]
    end
    module mid() an_instance_with_a_long_name: leaf() l2: leaf() end
    module top(in clk) m1: mid() m2: mid() f: KVR_FF(C=clk) end)";

TEST(AllocationFailure, BuildingAModuleLeavesNothingBehind)
{
    const auto before = liveItemCounts();
    int failures = 0;
    for (long number = 0;; ++number) {
        LibsetGuard guard;
        netlistFromText(DESIGN);
        Verific::Netlist *leaf = testsupport::netlistOfCell("leaf");
        DesignDatabase database(true);
        const Outcome outcome = failAllocation(number, [&] { database.buildNetlist(leaf, true, "", ""); });
        if (outcome == Outcome::THREW) {
            ++failures;
            ASSERT_EQ(liveItemCounts(), before) << "allocation " << number;
            ASSERT_TRUE(database.objectPool(ELABORATED)->empty()) << "allocation " << number;
            continue;
        }
        const IVDBNetlist *module = database.objectPool(ELABORATED)->find(leaf);
        ASSERT_NE(module, nullptr);
        ASSERT_EQ(module->getNets(true).size(), 4u);
        ASSERT_EQ(module->getNets(false).size(), 4u);
        if (outcome == Outcome::NOT_REACHED) {
            break;
        }
    }
    EXPECT_GT(failures, 40);
}

class InterruptedImport : public testing::TestWithParam<IDesignDatabase::SOURCE_TYPE> {
  protected:
    static bool import(DesignDatabase &database, Verific::Netlist *top)
    {
        return GetParam() == ELABORATED ? database.parseElaboratedNetlist(top) : database.parsePostMapNetlist(top);
    }
    static const char *wholeTree()
    {
        return GetParam() == ELABORATED ? "m1: mid\n  an_instance_with_a_long_name: leaf\n  l2: leaf\n"
                                          "m2: mid\n  an_instance_with_a_long_name: leaf\n  l2: leaf\nf: KVR_FF\n"
                                        : "m1: mid\nm2: mid\nf: KVR_FF\n";
    }
};

TEST_P(InterruptedImport, LeavesADatabaseThatCanBeResetAndUsedAgain)
{
    const auto before = liveItemCounts();
    int failures = 0;
    for (long number = 0;; ++number) {
        LibsetGuard guard;
        Verific::Netlist *top = netlistFromText(DESIGN);
        DesignDatabase database(true);
        const Outcome outcome = failAllocation(number, [&] { EXPECT_TRUE(import(database, top)); });
        if (outcome == Outcome::THREW) {
            ++failures;
            database.reset(GetParam());
            ASSERT_EQ(liveItemCounts(), before) << "allocation " << number;
            ASSERT_TRUE(database.objectPool(GetParam())->empty()) << "allocation " << number;
            ASSERT_TRUE(import(database, top));
        }
        ASSERT_EQ(treeText(*database.getRoot(GetParam())), wholeTree()) << "allocation " << number;
        if (outcome == Outcome::NOT_REACHED) {
            break;
        }
    }
    EXPECT_GT(failures, 80);
    EXPECT_EQ(liveItemCounts(), before);
}

TEST_P(InterruptedImport, OverALoadedSourceLosesNeitherTree)
{
    const auto before = liveItemCounts();
    for (long number = 0;; ++number) {
        LibsetGuard guard;
        Verific::Netlist *top = netlistFromText(DESIGN);
        DesignDatabase database(true);
        ASSERT_TRUE(import(database, top));
        const IVDBInstance *oldRoot = database.getRoot(GetParam());
        const Outcome outcome = failAllocation(number, [&] { import(database, top); });
        ASSERT_TRUE(database.isSourceLoaded(GetParam()));
        ASSERT_EQ(treeText(*oldRoot), wholeTree());
        if (outcome == Outcome::NOT_REACHED) {
            break;
        }
    }
    EXPECT_EQ(liveItemCounts(), before);
}

/// DESIGN, saved.
class SavedDesign : public testsupport::ScratchFile {
  public:
    SavedDesign() : ScratchFile("out_of_memory")
    {
        EXPECT_NE(netlistFromText(DESIGN)->SaveToFile(path().c_str()), 0u);
        LibsetGuard::clear();
    }
};

TEST_P(InterruptedImport, FromAFileLeavesADatabaseThatCanBeResetAndUsedAgain)
{
    const auto import = [](DesignDatabase &database, const std::string &path) {
        return GetParam() == ELABORATED ? database.parseElaboratedNetlistFromFile(path)
                                        : database.parsePostMapNetlistFromFile(path);
    };
    const auto before = liveItemCounts();
    const SavedDesign saved;
    int failures = 0;
    int restoreFailures = 0;
    for (long number = 0;; ++number) {
        LibsetGuard guard;
        DesignDatabase database(true);
        const Outcome outcome = failAllocation(number, [&] { EXPECT_TRUE(import(database, saved.path())); });
        if (outcome == Outcome::THREW) {
            ++failures;
            // Either nothing came of the file, or a whole netlist that the import could not finish.
            if (Verific::Libset::Global()->GetLibraries()->Size() == 0) {
                ++restoreFailures;
                ASSERT_FALSE(database.isSourceLoaded(GetParam()));
            } else {
                ASSERT_EQ(testsupport::netlistOfCell("top")->GetInsts()->Size(), 3u) << "allocation " << number;
            }
            database.reset(GetParam());
            ASSERT_EQ(liveItemCounts(), before) << "allocation " << number;
            ASSERT_TRUE(database.objectPool(GetParam())->empty()) << "allocation " << number;
            ASSERT_TRUE(import(database, saved.path()));
        }
        ASSERT_EQ(treeText(*database.getRoot(GetParam())), wholeTree()) << "allocation " << number;
        if (outcome == Outcome::NOT_REACHED) {
            break;
        }
    }
    EXPECT_GT(restoreFailures, 50);
    EXPECT_GT(failures - restoreFailures, 80);
    EXPECT_EQ(liveItemCounts(), before);
}

INSTANTIATE_TEST_SUITE_P(AllocationFailure, InterruptedImport, testing::Values(ELABORATED, POST_MAP));

} // namespace
} // namespace kvr::netlistdb
