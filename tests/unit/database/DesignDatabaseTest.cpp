#include "netlist/VDBObjectPool.h"

#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"
#include "tests/support/Sources.h"
#include "tests/support/VirtualSlots.h"

#include <netlistdb/netlistdb.h>

#include <DataBase.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>

namespace kvr::netlistdb {
namespace {

using testsupport::ELABORATED;
using testsupport::LibsetGuard;
using testsupport::netlistFromText;
using testsupport::POST_MAP;
using testsupport::virtualSlot;

IDesignDatabase::SOURCE_TYPE sourceType(unsigned value)
{
    return static_cast<IDesignDatabase::SOURCE_TYPE>(value);
}

TEST(IDesignDatabase, HasTwoSources)
{
    EXPECT_EQ(ELABORATED, 1u);
    EXPECT_EQ(POST_MAP, 2u);
    EXPECT_EQ(sizeof(IDesignDatabase::SOURCE_TYPE), 4u);
}

TEST(IDesignDatabase, KeepsTheOrderOfItsVirtualOperations)
{
    EXPECT_EQ(virtualSlot(&IDesignDatabase::parseElaboratedNetlist), 2u);
    EXPECT_EQ(virtualSlot(&IDesignDatabase::parseElaboratedNetlistFromFile), 3u);
    EXPECT_EQ(virtualSlot(&IDesignDatabase::parsePostMapNetlist), 4u);
    EXPECT_EQ(virtualSlot(&IDesignDatabase::parsePostMapNetlistFromFile), 5u);
    EXPECT_EQ(virtualSlot(&IDesignDatabase::load), 6u);
    EXPECT_EQ(virtualSlot(&IDesignDatabase::save), 7u);
    EXPECT_EQ(virtualSlot(&IDesignDatabase::reset), 8u);
    EXPECT_EQ(virtualSlot(&IDesignDatabase::isSourceLoaded), 9u);
    EXPECT_EQ(virtualSlot(&IDesignDatabase::getCheckSum), 10u);
    EXPECT_EQ(virtualSlot(&IDesignDatabase::getTopModule), 11u);
    EXPECT_EQ(virtualSlot(&IDesignDatabase::getRoot), 12u);
    EXPECT_EQ(virtualSlot(&IDesignDatabase::getViewInstances), 13u);
    EXPECT_EQ(virtualSlot(&IDesignDatabase::getChildInstances), 14u);
    EXPECT_EQ(virtualSlot(&IDesignDatabase::search), 15u);
    EXPECT_EQ(virtualSlot(&IDesignDatabase::findDrivingClockDomains), 16u);
    EXPECT_EQ(virtualSlot(&IDesignDatabase::listAllClockDomains), 17u);
}

TEST(DesignDatabase, IsEmptyAtFirst)
{
    LibsetGuard guard;
    DesignDatabase database(true);
    for (const auto type : {ELABORATED, POST_MAP}) {
        EXPECT_FALSE(database.isSourceLoaded(type));
        EXPECT_EQ(database.getTopModule(type), nullptr);
        EXPECT_EQ(database.getRoot(type), nullptr);
        EXPECT_EQ(database.workingCopy(type), nullptr);
        EXPECT_TRUE(database.listAllClockDomains(type).empty());
        EXPECT_FALSE(database.reset(type));
    }
    EXPECT_TRUE(database.drivingClockCache().empty());
    EXPECT_TRUE(database.elaboratedInstanceCache().empty());
    for (const auto type : {ELABORATED, POST_MAP}) {
        ASSERT_NE(database.objectPool(type), nullptr);
        EXPECT_TRUE(database.objectPool(type)->empty());
    }
    EXPECT_EQ(database.objectPool(static_cast<IDesignDatabase::SOURCE_TYPE>(3)), nullptr);
}

TEST(DesignDatabase, AsksTheNetlistDatabaseNothingWhenMade)
{
    LibsetGuard guard;
    const auto file = Verific::LineFile::EncodeLineFile("/top.v", 3);
    netlistFromText("module top() end");
    auto *database = new DesignDatabase(true);
    EXPECT_NE(Verific::Libset::Global()->GetLibrary("work"), nullptr);
    EXPECT_STREQ(Verific::LineFile::GetAbsFileName(file), "/top.v");
    delete database;
}

TEST(DesignDatabase, TreatsOtherSourceTypesAsAbsent)
{
    LibsetGuard guard;
    Verific::Netlist *top = netlistFromText("module top() end");
    DesignDatabase database(true);
    ASSERT_TRUE(database.parseElaboratedNetlist(top));
    ASSERT_TRUE(database.parsePostMapNetlist(top));
    for (const unsigned value : {0u, 3u, 5u, 7u, 0xFFFFFFFFu}) {
        EXPECT_FALSE(database.isSourceLoaded(sourceType(value))) << value;
        EXPECT_EQ(database.getTopModule(sourceType(value)), nullptr) << value;
        EXPECT_EQ(database.getRoot(sourceType(value)), nullptr) << value;
        EXPECT_EQ(database.workingCopy(sourceType(value)), nullptr) << value;
        EXPECT_TRUE(database.listAllClockDomains(sourceType(value)).empty()) << value;
        EXPECT_FALSE(database.reset(sourceType(value))) << value;
    }
    EXPECT_TRUE(database.isSourceLoaded(ELABORATED));
    EXPECT_TRUE(database.isSourceLoaded(POST_MAP));
}

TEST(DesignDatabase, LoadAndSaveAnswerTrueAndTouchNoFile)
{
    LibsetGuard guard;
    const std::filesystem::path folder = std::filesystem::path(testing::TempDir()) / "load_and_save";
    std::filesystem::create_directories(folder);
    DesignDatabase database(false);
    const std::string path = (folder / "design.db").string();
    EXPECT_TRUE(database.save(path, true));
    EXPECT_TRUE(database.save(path, false));
    EXPECT_TRUE(database.save("", true));
    EXPECT_TRUE(database.load(path));
    EXPECT_TRUE(database.load(""));
    EXPECT_TRUE(std::filesystem::is_empty(folder));
    EXPECT_FALSE(database.isSourceLoaded(ELABORATED));
    std::filesystem::remove_all(folder);
}

TEST(DesignDatabase, HasNoCheckSum)
{
    LibsetGuard guard;
    DesignDatabase database(false);
    std::array<unsigned char, 64> buffer;
    buffer.fill(0xA5);
    EXPECT_FALSE(database.getCheckSum(buffer.data()));
    EXPECT_TRUE(std::all_of(buffer.begin(), buffer.end(), [](unsigned char byte) { return byte == 0xA5; }));
    EXPECT_FALSE(database.getCheckSum(nullptr));
}

TEST(DesignDatabase, ListsNoInstancesByModule)
{
    LibsetGuard guard;
    DesignDatabase database(false);
    ASSERT_TRUE(
        database.parseElaboratedNetlist(netlistFromText("module leaf() end module top() u1: leaf() u2: leaf() end")));
    IVDBNetlist *top = database.getTopModule(ELABORATED);
    ASSERT_EQ(database.getRoot(ELABORATED)->getSubInstances().size(), 2u);
    EXPECT_TRUE(database.getViewInstances(top).empty());
    EXPECT_TRUE(database.getChildInstances(top).empty());
    EXPECT_TRUE(database.getViewInstances(nullptr).empty());
    EXPECT_TRUE(database.getChildInstances(nullptr).empty());
}

TEST(DesignDatabase, RecordsNothingInThePoolWithoutKeptSources)
{
    LibsetGuard guard;
    Verific::Netlist *top =
        netlistFromText("module leaf(in a) net n end module top(in a) bus [1:0] b u1: leaf(a=a) end");
    DesignDatabase database(false);
    ASSERT_TRUE(database.parseElaboratedNetlist(top));
    ASSERT_TRUE(database.parsePostMapNetlist(top));
    for (const auto type : {ELABORATED, POST_MAP}) {
        EXPECT_TRUE(database.objectPool(type)->empty());
        EXPECT_EQ(database.objectPool(type)->find(database.getTopModule(type)), nullptr);
        EXPECT_EQ(database.objectPool(type)->find(testsupport::netlistOfCell("leaf")), nullptr);
    }
}

} // namespace
} // namespace kvr::netlistdb
