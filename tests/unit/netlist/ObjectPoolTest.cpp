#include "netlist/VDBObjectPool.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace kvr::netlistdb {
namespace {

/// An address for an object that the pool never looks into.
template <typename T> T *object(std::uintptr_t number)
{
    return reinterpret_cast<T *>(number * 64);
}

using Verific::Instance;
using Verific::Net;
using Verific::Netlist;
using Verific::Port;

TEST(VDBObjectPool, HasAVirtualDestructor)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<VDBObjectPool>);
}

TEST(VDBObjectPool, LooksUpInEveryDirectionThatItRecords)
{
    VDBObjectPool pool(true);
    pool.registerNetlist(object<Netlist>(1), object<IVDBNetlist>(11));
    pool.registerNet(object<Net>(2), object<IVDBNet>(12));
    pool.registerPort(object<Port>(3), object<IVDBPort>(13));
    pool.registerInstance(object<IVDBInstance>(14), object<Instance>(4));
    EXPECT_EQ(pool.find(object<const Netlist>(1)), object<IVDBNetlist>(11));
    EXPECT_EQ(pool.find(object<const IVDBNetlist>(11)), object<Netlist>(1));
    EXPECT_EQ(pool.find(object<const Net>(2)), object<IVDBNet>(12));
    EXPECT_EQ(pool.find(object<const IVDBNet>(12)), object<Net>(2));
    EXPECT_EQ(pool.find(object<const Port>(3)), object<IVDBPort>(13));
    EXPECT_EQ(pool.find(object<const IVDBInstance>(14)), object<Instance>(4));
    EXPECT_FALSE(pool.empty());
}

TEST(VDBObjectPool, KeepsItsMapsApart)
{
    VDBObjectPool pool(true);
    pool.registerNet(object<Net>(1), object<IVDBNet>(11));
    EXPECT_EQ(pool.find(object<const Netlist>(1)), nullptr);
    EXPECT_EQ(pool.find(object<const Port>(1)), nullptr);
    EXPECT_EQ(pool.find(object<const Instance>(1)), nullptr);
    EXPECT_EQ(pool.find(object<const IVDBNetlist>(11)), nullptr);
    EXPECT_EQ(pool.find(object<const IVDBInstance>(11)), nullptr);
    EXPECT_EQ(pool.find(object<const Net>(11)), nullptr);
}

TEST(VDBObjectPool, AnswersNullToNull)
{
    VDBObjectPool pool(true);
    pool.registerNet(object<Net>(1), object<IVDBNet>(11));
    EXPECT_EQ(pool.find(static_cast<const Net *>(nullptr)), nullptr);
    EXPECT_EQ(pool.find(static_cast<const IVDBNet *>(nullptr)), nullptr);
}

TEST(VDBObjectPool, NeverOverwritesButStillRecordsTheWayBack)
{
    VDBObjectPool pool(true);
    pool.registerNet(object<Net>(1), object<IVDBNet>(11));
    pool.registerNet(object<Net>(1), object<IVDBNet>(12));
    EXPECT_EQ(pool.find(object<const Net>(1)), object<IVDBNet>(11));
    EXPECT_EQ(pool.find(object<const IVDBNet>(12)), object<Net>(1));
    pool.registerNetlist(object<Netlist>(2), object<IVDBNetlist>(21));
    pool.registerNetlist(object<Netlist>(3), object<IVDBNetlist>(21));
    EXPECT_EQ(pool.find(object<const IVDBNetlist>(21)), object<Netlist>(2));
    EXPECT_EQ(pool.find(object<const Netlist>(3)), object<IVDBNetlist>(21));
    pool.registerPort(object<Port>(4), object<IVDBPort>(41));
    pool.registerPort(object<Port>(4), object<IVDBPort>(42));
    EXPECT_EQ(pool.find(object<const Port>(4)), object<IVDBPort>(41));
    pool.registerInstance(object<IVDBInstance>(51), object<Instance>(5));
    pool.registerInstance(object<IVDBInstance>(51), object<Instance>(6));
    EXPECT_EQ(pool.find(object<const IVDBInstance>(51)), object<Instance>(5));
}

TEST(VDBObjectPool, RecordsNothingWhenToldNotTo)
{
    VDBObjectPool pool(false);
    pool.registerNetlist(object<Netlist>(1), object<IVDBNetlist>(11));
    pool.registerNet(object<Net>(2), object<IVDBNet>(12));
    pool.registerPort(object<Port>(3), object<IVDBPort>(13));
    pool.registerInstance(object<IVDBInstance>(14), object<Instance>(4));
    pool.registerOccurrence(object<Instance>(4), object<IVDBInstance>(14));
    EXPECT_TRUE(pool.empty());
    EXPECT_EQ(pool.find(object<const Net>(2)), nullptr);
    EXPECT_EQ(pool.find(object<const IVDBNet>(12)), nullptr);
}

TEST(VDBObjectPool, FindsAnOccurrenceOnlyWhenOneWasRegistered)
{
    VDBObjectPool pool(true);
    pool.registerInstance(object<IVDBInstance>(11), object<Instance>(1));
    EXPECT_EQ(pool.find(object<const Instance>(1)), nullptr);
    pool.registerOccurrence(object<Instance>(1), object<IVDBInstance>(11));
    pool.registerOccurrence(object<Instance>(1), object<IVDBInstance>(12));
    EXPECT_EQ(pool.find(object<const Instance>(1)), object<IVDBInstance>(11));
}

TEST(VDBObjectPool, ErasesAnItemBothWays)
{
    VDBObjectPool pool(true);
    pool.registerNetlist(object<Netlist>(1), object<IVDBNetlist>(11));
    pool.registerNet(object<Net>(2), object<IVDBNet>(12));
    pool.registerInstance(object<IVDBInstance>(14), object<Instance>(4));
    pool.registerOccurrence(object<Instance>(4), object<IVDBInstance>(14));
    pool.eraseNetlist(object<IVDBNetlist>(11));
    pool.eraseNet(object<IVDBNet>(12));
    pool.eraseInstance(object<IVDBInstance>(14));
    EXPECT_TRUE(pool.empty());
    pool.eraseNet(object<IVDBNet>(12));
    EXPECT_TRUE(pool.empty()) << "erasing what is not there does nothing";
}

TEST(VDBObjectPool, ErasingAnItemLeavesTheEntryOfTheItemRegisteredFirst)
{
    VDBObjectPool pool(true);
    pool.registerNet(object<Net>(1), object<IVDBNet>(11));
    pool.registerNet(object<Net>(1), object<IVDBNet>(12));
    pool.eraseNet(object<IVDBNet>(12));
    EXPECT_EQ(pool.find(object<const Net>(1)), object<IVDBNet>(11));
    EXPECT_EQ(pool.find(object<const IVDBNet>(12)), nullptr);
    pool.registerPort(object<Port>(3), object<IVDBPort>(31));
    pool.erasePort(object<Port>(3), object<IVDBPort>(32));
    EXPECT_EQ(pool.find(object<const Port>(3)), object<IVDBPort>(31));
    pool.erasePort(object<Port>(3), object<IVDBPort>(31));
    EXPECT_EQ(pool.find(object<const Port>(3)), nullptr);
}

TEST(VDBObjectPool, ReplacesAndRemovesPortsByItem)
{
    VDBObjectPool pool(true);
    for (std::uintptr_t port = 1; port <= 3; ++port) {
        pool.registerPort(object<Port>(port), object<IVDBPort>(10 + port));
    }
    AddressMap replacements;
    replacements.insertIfAbsent(reinterpret_cast<std::uintptr_t>(object<IVDBPort>(11)),
                                reinterpret_cast<std::uintptr_t>(object<IVDBPort>(21)));
    replacements.insertIfAbsent(reinterpret_cast<std::uintptr_t>(object<IVDBPort>(12)), 0);
    pool.replacePorts(replacements);
    EXPECT_EQ(pool.find(object<const Port>(1)), object<IVDBPort>(21));
    EXPECT_EQ(pool.find(object<const Port>(2)), nullptr);
    EXPECT_EQ(pool.find(object<const Port>(3)), object<IVDBPort>(13));
}

TEST(VDBObjectPool, ForgetsEverythingWhenCleared)
{
    VDBObjectPool pool(true);
    pool.registerNetlist(object<Netlist>(1), object<IVDBNetlist>(11));
    pool.registerNet(object<Net>(2), object<IVDBNet>(12));
    pool.registerPort(object<Port>(3), object<IVDBPort>(13));
    pool.registerInstance(object<IVDBInstance>(14), object<Instance>(4));
    pool.registerOccurrence(object<Instance>(4), object<IVDBInstance>(14));
    pool.clear();
    EXPECT_TRUE(pool.empty());
}

} // namespace
} // namespace kvr::netlistdb
