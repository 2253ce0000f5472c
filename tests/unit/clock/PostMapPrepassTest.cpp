#include "ClockTest.h"

#include <stdexcept>

namespace clock_test {
namespace {

class PostMapPrepass : public ClockTest {
  protected:
    /// Clock domains of one cell of the given type with one marked pin, on the net clk.
    static Names clocksOfCellType(const std::string &type)
    {
        DesignDatabase database(true);
        Verific::Netlist *const top = testsupport::netlistFromText(R"(
            blackbox CELL(in CP clock, D, out Q) end
            module top(in clk, d, out q) x: CELL(CP=clk, D=d, Q=q) @KVR_ATTRIBUTE_CELL_NAME=")" +
                                                                   type + R"(" end)");
        database.parsePostMapNetlist(top);
        Names names;
        for (const IClockDomain *domain : database.listAllClockDomains(POST_MAP)) {
            names.insert(domain->getName());
        }
        return names;
    }
};

TEST_F(PostMapPrepass, RecordsTheInputOfAClockBufferAndTheNetAtTheClockPin)
{
    postMap(R"(
        module top(in clk, d, out q)
            buffer: KVR_GBUFCE(I=clk, O=gclk)
            ff: KVR_FF(C=gclk, D=d, Q=q)
        end)");
    EXPECT_EQ(clocks(POST_MAP), (Names{"clk", "gclk"}));
    for (const IClockDomain *domain : database->listAllClockDomains(POST_MAP)) {
        EXPECT_EQ(domain->getInstance(), database->getRoot(POST_MAP));
    }
}

TEST_F(PostMapPrepass, SkipsAClockBufferWithoutInputPortOrWithoutNetThere)
{
    postMap(R"(
        blackbox NO_I(in A, out O) end
        module top(in clk, c2, c3, d, out q)
            b1: NO_I(A=clk, O=g1) @KVR_ATTRIBUTE_CELL_NAME=KVR_GBUFCE
            b2: KVR_GBUFCE(CE=c2, O=g2)
            b3: KVR_GBUFCE(I=c3, O=g3)
        end)");
    EXPECT_EQ(clocks(POST_MAP), Names{"c3"});
}

TEST_F(PostMapPrepass, NeverSearchesAClockBufferForClockPins)
{
    postMap(R"(
        blackbox BUFFER(in I, CE clock, out O) end
        blackbox NO_I(in CE clock, out O) end
        module top(in clk, ce)
            b1: BUFFER(I=clk, CE=ce, O=g1) @KVR_ATTRIBUTE_CELL_NAME=KVR_GBUFCE
            b2: NO_I(CE=ce, O=g2) @KVR_ATTRIBUTE_CELL_NAME=KVR_GBUFCE
        end)");
    EXPECT_EQ(clocks(POST_MAP), Names{"clk"});
}

TEST_F(PostMapPrepass, TakesOnlyTheExactMarkOfAClockPin)
{
    postMap(R"(
        blackbox CELL(in C1 @KVR_ATTRIBUTE_PORT__IS_CLOCK=true, C2 @KVR_ATTRIBUTE_PORT__IS_CLOCK=True,
                         C3 @KVR_ATTRIBUTE_PORT__IS_CLOCK="TRUE ", C4 @KVR_ATTRIBUTE_PORT__IS_CLOCK,
                         C5 @KVR_ATTRIBUTE_PORT__IS_CLOCK="", C6 @KVR_ATTRIBUTE_PORT__IS_CLOCK=TRU,
                         C7 @kvr_attribute_port__is_clock=TRUE, C8 @KVR_ATTRIBUTE_PORT__IS_CLOCK=TRUE, C9) end
        module top(in n1, n2, n3, n4, n5, n6, n7, n8, n9)
            x: CELL(C1=n1, C2=n2, C3=n3, C4=n4, C5=n5, C6=n6, C7=n7, C8=n8, C9=n9) @KVR_ATTRIBUTE_CELL_NAME=KVR_FF
        end)");
    EXPECT_EQ(clocks(POST_MAP), Names{"n8"});
}

TEST_F(PostMapPrepass, TakesMarkedPinsOfEveryDirectionButOutput)
{
    postMap(R"(
        blackbox CELL(out A clock, inout B clock, none C clock, in D clock) end
        module top(out a, inout b, in c, d)
            x: CELL(A=a, B=b, C=c, D=d) @KVR_ATTRIBUTE_CELL_NAME=KVR_SRL
        end)");
    EXPECT_EQ(clocks(POST_MAP), (Names{"b", "c", "d"}));
}

TEST_F(PostMapPrepass, KnowsTheSequentialCellTypesByNameOrByPrefix)
{
    for (const char *type : {"KVR_FF", "KVR_MULT", "KVR_IDDR", "KVR_ODDR", "KVR_RAM", "KVR_RAM512X18", "KVR_DPRAM",
                             "KVR_DPRAM_X", "KVR_DSP", "KVR_DSP48", "KVR_SRL", "KVR_SRL16"}) {
        EXPECT_EQ(clocksOfCellType(type), Names{"clk"}) << type;
    }
    for (const char *type :
         {"", "KVR_FFX", "KVR_F", "KVR_MULT18", "KVR_IDDR2", "KVR_ODDR2", "KVR_RA", "KVR_DPRA", "KVR_DS", "KVR_SR",
          "kvr_ff", "KVR_ff", "kvr_ram", "XKVR_RAM", " KVR_FF", "KVR_LUT2", "KVR_GBUFCE", "KVR_GBUFCE2"}) {
        EXPECT_EQ(clocksOfCellType(type), Names{}) << type;
    }
}

TEST_F(PostMapPrepass, TellsTheTypeByTheAttributeOfTheInstanceAlone)
{
    postMap(R"(
        module top(in c1, c2, c3, d)
            f1: KVR_FF(C=c1, D=d, Q=q1) plain
            f2: KVR_FF(C=c2, D=d, Q=q2) @KVR_ATTRIBUTE_CELL_NAME
            f3: KVR_FF(C=c3, D=d, Q=q3)
        end)");
    EXPECT_EQ(clocks(POST_MAP), Names{"c3"});
}

TEST_F(PostMapPrepass, RecordsEveryClockPinOfACellAndEachNetOnce)
{
    postMap(R"(
        module top(in wclk, rclk, d)
            ram: KVR_RAM512X18(W_CLK=wclk, R_CLK=rclk, W_EN=d)
            f1: KVR_FF(C=rclk, D=d, Q=q1)
            f2: KVR_FF(C=wclk, D=d, Q=q2)
            f3: KVR_FF(C=rclk, D=d, Q=q3)
            f4: KVR_FF(D=d, Q=q4)
        end)");
    EXPECT_EQ(clocks(POST_MAP), (Names{"rclk", "wclk"}));
}

TEST_F(PostMapPrepass, LooksAtTheInstancesOfTheTopAlone)
{
    postMap(R"(
        module sub(in ck, d, out q) ff: KVR_FF(C=ck, D=d, Q=q) end
        module top(in clk, d, out q) u: sub(ck=clk, d=d, q=q) end)");
    EXPECT_EQ(clocks(POST_MAP), Names{});
}

TEST_F(PostMapPrepass, CoversInstancesWithoutItemWhenTheImportStoppedEarly)
{
    postMap(R"(
        module top(in c1, c2, d)
            f1: KVR_FF(C=c1, D=d, Q=q1)
            x: ?
            f2: KVR_FF(C=c2, D=d, Q=q2)
        end)");
    ASSERT_EQ(database->getRoot(POST_MAP)->getSubInstances().size(), 1U);
    EXPECT_EQ(clocks(POST_MAP), (Names{"c1", "c2"}));
}

TEST_F(PostMapPrepass, AddsToTheTableAndNeverEmptiesIt)
{
    postMap("module top(in clk, d) ff: KVR_FF(C=clk, D=d, Q=q) end");
    database->parseClkDomainPostMap(copyOf(POST_MAP));
    EXPECT_EQ(clocks(POST_MAP), (Names{"clk", "clk"}));
}

TEST_F(PostMapPrepass, ThrowsWhenAClockNetHasNoItem)
{
    postMap("module top(in clk, d) ff: KVR_FF(C=clk, D=d, Q=q) end");
    Verific::Netlist *const foreign = testsupport::netlistFromText("module other(in c) f: KVR_FF(C=c) end");
    try {
        database->parseClkDomainPostMap(foreign);
        FAIL() << "nothing thrown";
    } catch (const std::invalid_argument &error) {
        EXPECT_STREQ(error.what(), "VDBClockDomain: net is nullptr");
    }
    EXPECT_EQ(clocks(POST_MAP), Names{"clk"});
}

TEST_F(PostMapPrepass, ThrowsWhenTheInputOfAClockBufferHasNoItem)
{
    postMap("module top(in clk, d) ff: KVR_FF(C=clk, D=d, Q=q) end");
    Verific::Netlist *const foreign = testsupport::netlistFromText("module other(in c) b: KVR_GBUFCE(I=c) end");
    EXPECT_THROW(database->parseClkDomainPostMap(foreign), std::invalid_argument);
}

} // namespace
} // namespace clock_test
