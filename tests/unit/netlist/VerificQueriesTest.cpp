#include "netlist/verific_queries.h"

#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"

#include <DataBase.h>

#include <gtest/gtest.h>

namespace kvr::netlistdb {
namespace {

namespace queries = verific_queries;
using testsupport::LibsetGuard;
using testsupport::netlistFromText;

TEST(VerificQueries, AnOrdinaryNetIsOneBitAndMayBeProbed)
{
    const Verific::Net net("n");
    EXPECT_EQ(queries::widthOf(net), 1u);
    EXPECT_FALSE(queries::mustNotBeProbed(net));
}

TEST(VerificQueries, ANetForAMemoryIsAsWideAsItAndMustNotBeProbed)
{
    const Verific::RamNet net("storage", 512);
    EXPECT_EQ(queries::widthOf(net), 512u);
    EXPECT_TRUE(queries::mustNotBeProbed(net));
}

TEST(VerificQueries, APortBusIsAsWideAsItsBounds)
{
    const Verific::PortBus bus("d", 2, 9, Verific::DIR_IN);
    EXPECT_EQ(queries::widthOf(bus), 8u);
}

TEST(VerificQueries, CellAndLibraryAreThoseOfTheOwner)
{
    LibsetGuard guard;
    const Verific::Netlist *top = netlistFromText("module top() library=lib end");
    EXPECT_STREQ(queries::cellName(*top), "top");
    EXPECT_STREQ(queries::libraryName(*top), "lib");
    const Verific::Netlist loose("netlist");
    EXPECT_EQ(queries::cellName(loose), nullptr);
    EXPECT_EQ(queries::libraryName(loose), nullptr);
    Verific::Cell cell("counter");
    auto *netlist = new Verific::Netlist("netlist");
    cell.Add(netlist);
    EXPECT_STREQ(queries::cellName(*netlist), "counter");
    EXPECT_EQ(queries::libraryName(*netlist), nullptr);
}

TEST(VerificQueries, ParametersAreThoseGivenToTheInstance)
{
    Verific::Instance instance("u", nullptr);
    EXPECT_EQ(queries::parameterCount(instance), 0u);
    instance.AddParam("A", "1");
    instance.AddParam("B", "2");
    EXPECT_EQ(queries::parameterCount(instance), 2u);
}

} // namespace
} // namespace kvr::netlistdb
