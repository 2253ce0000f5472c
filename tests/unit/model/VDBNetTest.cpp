#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"
#include "tests/support/Throws.h"

#include <netlistdb/IVDBLineInfo.h>
#include <netlistdb/VDBNet.h>
#include <netlistdb/VDBNetBus.h>

#include <DataBase.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace kvr::netlistdb {
namespace {

using testsupport::LibsetGuard;
using testsupport::messageOf;
using testsupport::netlistFromText;
using testsupport::netOf;

/// A net that is as wide, and as hidden, as one likes.
class OddNet : public Verific::Net {
  public:
    OddNet(const char *name, unsigned bits, bool hidden) : Net(name), m_bits(bits), m_hidden(hidden) {}
    unsigned Size() const override { return m_bits; }
    unsigned IsRamNet() const override { return m_hidden ? 2 : 0; }

  private:
    unsigned m_bits;
    bool m_hidden;
};

TEST(VDBNet, RefusesANullNet)
{
    const auto one = [] { VDBNet net(nullptr); };
    const auto two = [] { VDBNet net(nullptr, nullptr); };
    EXPECT_EQ(messageOf<std::invalid_argument>(one), "net is nullptr");
    EXPECT_EQ(messageOf<std::invalid_argument>(two), "net is nullptr");
}

TEST(VDBNet, TakesTheNameAsItStands)
{
    const Verific::Net source("u_core/\\odd.name [7]");
    EXPECT_EQ(VDBNet(&source).getName(), "u_core/\\odd.name [7]");
}

TEST(VDBNet, HasAnEmptyNameWhenTheSourceHasNone)
{
    const Verific::Net source(nullptr);
    EXPECT_EQ(VDBNet(&source).getName(), "");
}

TEST(VDBNet, ReadsPowerGroundAndMultipleDrivers)
{
    LibsetGuard guard;
    const Verific::Netlist *top = netlistFromText(R"(
        primitive VCC(out O) type=1 end
        primitive GND(out O) type=2 end
        primitive BUF(in I, out O) type=5 input=I end
        module top(in a)
            one: VCC(O=high)
            zero: GND(O=low)
            b1: BUF(I=a, O=fought)
            b2: BUF(I=a, O=fought)
            b3: BUF(I=a, O=single)
        end)");
    const auto flags = [&](const char *name) {
        const VDBNet net(netOf(top, name));
        return std::string() + (net.isPwr() ? "p" : "-") + (net.isGnd() ? "g" : "-") +
               (net.isMultipleDriven() ? "m" : "-");
    };
    EXPECT_EQ(flags("high"), "p--");
    EXPECT_EQ(flags("low"), "-g-");
    EXPECT_EQ(flags("fought"), "--m");
    EXPECT_EQ(flags("single"), "---");
}

TEST(VDBNet, IsUserDeclaredExactlyWithASourcePosition)
{
    LibsetGuard guard;
    const Verific::Netlist *top = netlistFromText("module top() net declared at top.v:2 net made end");
    VDBNet declared(netOf(top, "declared"));
    VDBNet made(netOf(top, "made"));
    EXPECT_TRUE(declared.isUserDeclared());
    EXPECT_NE(declared.getLineInfo(), nullptr);
    EXPECT_FALSE(made.isUserDeclared());
    EXPECT_EQ(made.getLineInfo(), nullptr);
    EXPECT_TRUE(made.isSelectableForDebugger()) << "a net without position may still be probed";
}

TEST(VDBNet, IsSelectableUnlessProtectedOrExcluded)
{
    OddNet open("n", 1, false);
    OddNet hidden("n", 1, true);
    EXPECT_TRUE(VDBNet(&open).isSelectableForDebugger());
    EXPECT_FALSE(VDBNet(&open).isProtected());
    EXPECT_FALSE(VDBNet(&hidden).isSelectableForDebugger());
    EXPECT_FALSE(VDBNet(&hidden).isProtected());
    open.SetProtected(1);
    hidden.SetProtected(1);
    EXPECT_FALSE(VDBNet(&open).isSelectableForDebugger());
    EXPECT_TRUE(VDBNet(&open).isProtected());
    EXPECT_FALSE(VDBNet(&hidden).isSelectableForDebugger());
}

TEST(VDBNet, ThatStandsForAMemoryIsAsWideAsTheMemoryAndNotSelectable)
{
    const Verific::RamNet memory("storage", 8192);
    const VDBNet net(&memory);
    EXPECT_EQ(net.getWidth(), 8192u);
    EXPECT_FALSE(net.isSelectableForDebugger());
}

TEST(VDBNet, IsABusFromTwoBitsOn)
{
    const OddNet none("n", 0, false);
    const OddNet one("n", 1, false);
    const OddNet two("n", 2, false);
    const OddNet largest("n", 4294967295u, false);
    EXPECT_FALSE(VDBNet(&none).isBus());
    EXPECT_EQ(VDBNet(&none).getWidth(), 0u);
    EXPECT_FALSE(VDBNet(&one).isBus());
    EXPECT_TRUE(VDBNet(&two).isBus());
    EXPECT_TRUE(VDBNet(&largest).isBus());
    EXPECT_EQ(VDBNet(&largest).getWidth(), 4294967295ull);
}

TEST(VDBNet, RecordsItsBusWithoutTellingIt)
{
    const Verific::Net source("d[0]");
    VDBNetBus bus("d", 1);
    VDBNet member(&bus, &source);
    EXPECT_EQ(member.getOwnerBus(), &bus);
    EXPECT_TRUE(bus.getNets().empty());
    EXPECT_EQ(VDBNet(nullptr, &source).getOwnerBus(), nullptr);
    EXPECT_EQ(VDBNet(&source).getOwnerBus(), nullptr);
}

TEST(VDBNet, LeavesItsBusAloneWhenDeleted)
{
    const Verific::Net source("d[0]");
    VDBNetBus bus("d", 1);
    delete new VDBNet(&bus, &source);
    EXPECT_EQ(bus.getName(), "d");
    EXPECT_TRUE(bus.getNets().empty());
}

} // namespace
} // namespace kvr::netlistdb
