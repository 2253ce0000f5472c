#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"

#include <netlistdb/netlistdb.h>

#include <DataBase.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace kvr::netlistdb {
namespace {

using Counts = std::array<unsigned, 6>;

Counts since(const Counts &before)
{
    Counts difference = liveItemCounts();
    for (std::size_t kind = 0; kind < difference.size(); ++kind) {
        difference[kind] -= before[kind];
    }
    return difference;
}

TEST(LiveItems, AreCountedInTheirOrder)
{
    testsupport::LibsetGuard guard;
    const Verific::Netlist *top = testsupport::netlistFromText("module top(in [1:0] d) net n end");
    const Counts before = liveItemCounts();
    {
        VDBLineInfo position("/top.v", 1);
        EXPECT_EQ(since(before), (Counts{1, 0, 0, 0, 0, 0}));
        VDBNetlist netlist(top, "", "");
        EXPECT_EQ(since(before), (Counts{1, 1, 0, 0, 0, 0}));
        VDBInstance instance(&netlist, nullptr);
        EXPECT_EQ(since(before), (Counts{1, 1, 1, 0, 0, 0}));
        VDBNet net(testsupport::netOf(top, "n"));
        EXPECT_EQ(since(before), (Counts{1, 1, 1, 1, 0, 0}));
        VDBNetBus declared(testsupport::netBusOf(top, "d"));
        VDBNetBus madeUp("b", 2);
        EXPECT_EQ(since(before), (Counts{1, 1, 1, 1, 2, 0}));
        VDBPort bit(testsupport::portOf(top, "d[1]"));
        VDBPort vector(top->GetPortBus("d"));
        EXPECT_EQ(since(before), (Counts{1, 1, 1, 1, 2, 2}));
    }
    EXPECT_EQ(since(before), (Counts{0, 0, 0, 0, 0, 0}));
}

TEST(LiveItems, AConstructorThatThrowsLeavesTheCountersAsTheyWere)
{
    const Counts before = liveItemCounts();
    EXPECT_THROW(VDBNet(static_cast<Verific::Net *>(nullptr)), std::invalid_argument);
    EXPECT_THROW(VDBNetBus(static_cast<Verific::NetBus *>(nullptr)), std::invalid_argument);
    EXPECT_THROW(VDBPort(static_cast<Verific::Port *>(nullptr)), std::invalid_argument);
    EXPECT_THROW(VDBPort(static_cast<Verific::PortBus *>(nullptr)), std::invalid_argument);
    EXPECT_THROW(VDBNetlist(nullptr, "name", "library"), std::invalid_argument);
    EXPECT_THROW(VDBInstance(nullptr, nullptr, nullptr), std::invalid_argument);
    EXPECT_EQ(since(before), (Counts{0, 0, 0, 0, 0, 0}));
}

TEST(LiveItems, ClockDomainsAreNotCounted)
{
    testsupport::LibsetGuard guard;
    const Verific::Netlist *top = testsupport::netlistFromText("module top() net n end");
    VDBInstance instance(nullptr, nullptr);
    VDBNet net(testsupport::netOf(top, "n"));
    const Counts before = liveItemCounts();
    VDBClockDomain domain(&net, &instance);
    EXPECT_EQ(since(before), (Counts{0, 0, 0, 0, 0, 0}));
}

} // namespace
} // namespace kvr::netlistdb
