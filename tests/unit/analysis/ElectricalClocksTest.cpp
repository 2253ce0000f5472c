#include "tests/unit/analysis/MapTest.h"

namespace analysis_test {
namespace {

class ElectricalClocks : public MapTest {};

constexpr const char *CELLS = R"(
    register DFF(in d, clk, out q) clock=clk end
    primitive $_BUF_(in A, out Y) type=5 input=A end
    primitive $_NOT_(in A, out Y) type=6 input=A end
    primitive $_AND_(in A, B, out Y) type=7 end
    primitive $_DFF_N_(in C, D, out Q) end
    primitive POWER(out Y) type=1 end
)";

std::string text(const char *modules)
{
    return std::string(CELLS) + modules;
}

TEST_F(ElectricalClocks, APortIsTheClockOfEverythingBehindBuffersInvertersAndHierarchy)
{
    elaboratedMap(text(R"(
        module leaf(in ck, d, out q)
            r: DFF(clk=ck, d=d, q=q)
        end
        module top(in clk, d, out q, p)
            b: $_BUF_(A=clk, Y=clk_b)
            n: $_NOT_(A=clk_b, Y=clk_n)
            m: $_NOT_(A=clk_n, Y=clk_p)
            u: leaf(ck=clk_b, d=d, q=q)
            v: leaf(ck=clk_p, d=d, q=p)
        end)")
                      .c_str());
    EXPECT_EQ(clocks(), "clk port rise 2 = clk_b = clk_p\n");
    EXPECT_EQ(electrical("clk_b"), "port clk (clock)");
    EXPECT_EQ(electrical("clk_n"), "port clk inverted (clock)");
    EXPECT_EQ(electrical("ck", "v"), "port clk (clock)");
    EXPECT_EQ(electrical("q"), "register u/q");
}

TEST_F(ElectricalClocks, AnInverterTurnsTheEdgesThatRegistersUse)
{
    elaboratedMap(text(R"(
        module top(in clk, d, out q, p)
            n: $_NOT_(A=clk, Y=clk_n)
            r: DFF(clk=clk_n, d=d, q=q)
            s: $_DFF_N_(C=clk_n, D=d, Q=p)
        end)")
                      .c_str());
    EXPECT_EQ(clocks(), "clk port rise+fall 2 = clk_n\n");
}

TEST_F(ElectricalClocks, ARegisterIsNoPartOfAnotherThatHasTheBeginningOfItsName)
{
    elaboratedMap(text(R"(
        module top(in clk, d, out q, p)
            r: DFF(clk=clk, d=d, q=q)
            "r:clk": DFF(clk=clk, d=d, q=p)
        end)")
                      .c_str());
    EXPECT_EQ(clocks(), "clk port rise 2\n");
}

TEST_F(ElectricalClocks, ADividedClockHasTheClockOfItsRegisterAsParent)
{
    elaboratedMap(text(R"(
        module top(in clk, d, out q)
            n: $_NOT_(A=div, Y=next)
            r: DFF(clk=clk, d=next, q=div)
            s: DFF(clk=div, d=d, q=q)
        end)")
                      .c_str());
    EXPECT_EQ(clocks(), "clk port rise 1\ndiv register rise 1 <- clk\n");
    EXPECT_EQ(launch("q"), "div:0");
    EXPECT_EQ(launch("div"), "clk:0 | div:0");
}

TEST_F(ElectricalClocks, AGatedClockHasTheClockThatGoesIntoItAsParentAndNotThatOfItsEnable)
{
    elaboratedMap(text(R"(
        module top(in clk, en_clk, d, out q)
            e: DFF(clk=en_clk, d=d, q=en)
            g: $_AND_(A=clk, B=en, Y=gated)
            s: DFF(clk=gated, d=d, q=q)
        end)")
                      .c_str());
    // No register uses clk, so that it is no clock; and the port may be the clock that is gated.
    EXPECT_EQ(clocks(), "en_clk port rise 1\ngated logic rise 1\n");
    database = std::make_unique<DesignDatabase>(true);
    elaboratedMap(text(R"(
        module top2(in clk, en_clk, d, out q, p)
            e: DFF(clk=en_clk, d=d, q=en)
            g: $_AND_(A=clk, B=en, Y=gated)
            s: DFF(clk=gated, d=d, q=q)
            t: DFF(clk=clk, d=d, q=p)
        end)")
                      .c_str());
    EXPECT_EQ(clocks(), "clk port rise 1\nen_clk port rise 1\ngated logic rise 1 <- clk\n");
    EXPECT_TRUE(map->related(*map->find("gated"), *map->find("clk")));
    EXPECT_FALSE(map->related(*map->find("gated"), *map->find("en_clk")));
}

TEST_F(ElectricalClocks, AClockOfLogicThatOnlyRegistersGoIntoHasTheirClocksAsParents)
{
    elaboratedMap(text(R"(
        module top(in a, b, d, out q)
            x: DFF(clk=a, d=d, q=xa)
            y: DFF(clk=b, d=d, q=xb)
            g: $_AND_(A=xa, B=xb, Y=made)
            s: DFF(clk=made, d=d, q=q)
        end)")
                      .c_str());
    EXPECT_EQ(clocks(), "a port rise 1\nb port rise 1\nmade logic rise 1 <- a b\n");
}

TEST_F(ElectricalClocks, AMultiplexedClockHasAllItsClocksAsParentsAndRelatesThemToNone)
{
    elaboratedMap(text(R"(
        operator $mux(in A, B, S, out Y) end
        module top(in a, b, s, d, out q, p, o)
            m: $mux(A=a, B=b, S=s, Y=y)
            r: DFF(clk=y, d=d, q=q)
            t: DFF(clk=a, d=d, q=p)
            u: DFF(clk=b, d=d, q=o)
        end)")
                      .c_str());
    EXPECT_EQ(clocks(), "a port rise 1\nb port rise 1\ny logic rise 1 <- a b\n");
    EXPECT_FALSE(map->related(*map->find("a"), *map->find("b")));
    EXPECT_TRUE(map->related(*map->find("a"), *map->find("y")));
}

TEST_F(ElectricalClocks, OfTwoGatesInARowTheNearerIsTheParent)
{
    elaboratedMap(text(R"(
        module top(in clk, e, f, d, out q, p, o)
            g: $_AND_(A=clk, B=e, Y=g1)
            h: $_AND_(A=g1, B=f, Y=g2)
            r: DFF(clk=clk, d=d, q=q)
            s: DFF(clk=g1, d=d, q=p)
            t: DFF(clk=g2, d=d, q=o)
        end)")
                      .c_str());
    EXPECT_EQ(clocks(), "clk port rise 1\ng1 logic rise 1 <- clk\ng2 logic rise 1 <- g1\n");
}

TEST_F(ElectricalClocks, AClockMadeInAnInstanceBeginsThereOncePerInstance)
{
    elaboratedMap(text(R"(
        module divider(in clk, d, out q, div)
            r: DFF(clk=clk, d=d, q=div)
            s: DFF(clk=div, d=d, q=q)
        end
        module top(in clk, d, out q0, q1, q2)
            u: divider(clk=clk, d=d, q=q0, div=x)
            v: divider(clk=clk, d=d, q=q1, div=y)
            r: DFF(clk=y, d=d, q=q2)
        end)")
                      .c_str());
    EXPECT_EQ(clocks(), "clk port rise 2\nu/div register rise 1 <- clk\nv/div register rise 2 <- clk = y\n");
    EXPECT_EQ(electrical("y"), "register v/div (clock)");
    EXPECT_EQ(launch("q2"), "v/div:0");
    EXPECT_EQ(launch("q", "u"), "u/div:0");
}

TEST_F(ElectricalClocks, ConstantsAndNothingAreRootsToo)
{
    elaboratedMap(text(R"(
        module top(in d, out q, p)
            c: POWER(Y=one)
            r: DFF(clk=one, d=d, q=q)
            s: DFF(clk=loose, d=d, q=p)
        end)")
                      .c_str());
    EXPECT_EQ(clocks(), "loose undriven rise 1\none constant rise 1\n");
}

TEST_F(ElectricalClocks, ARegisterWhoseClockPinIsOpenIsReachedByNothingDriven)
{
    elaboratedMap(text(R"(
        module top(in d, out q)
            r: DFF(d=d, q=q)
        end)")
                      .c_str());
    EXPECT_EQ(clocks(), "");
    EXPECT_EQ(launch("q"), "| undriven");
}

TEST_F(ElectricalClocks, ARingOfInvertersBeginsAtItsFirstNet)
{
    elaboratedMap(text(R"(
        module top(in d, out q)
            net a
            net b
            net c
            x: $_NOT_(A=c, Y=a)
            y: $_NOT_(A=a, Y=b)
            z: $_NOT_(A=b, Y=c)
            r: DFF(clk=c, d=d, q=q)
        end)")
                      .c_str());
    EXPECT_EQ(clocks(), "a logic rise 1 = c\n");
    EXPECT_EQ(launch("b"), "| a:1 | loop");
}

TEST_F(ElectricalClocks, PadsBuffersAndGatesOfADeviceAreTheClockThatTheyPassOn)
{
    postMapMap(R"(
        module top(in pad, en, d, inout io, out q, p)
            i: KVR_IBUF(I=pad, O=clk)
            g: KVR_GBUFCE(I=clk, CE=en, O=clk_g)
            r: KVR_FF(C=clk_g, D=d, Q=q)
            b: KVR_IOBUF(I=q, OE=en, O=in, IO=io)
            s: KVR_FF(C=in, D=d, Q=p) #C_INVERTED=1
        end)");
    EXPECT_EQ(clocks(), "io port fall 1 = in\npad port rise 1 = clk = clk_g\n");
}

TEST_F(ElectricalClocks, ALookUpTableOfOneInputIsABufferOrAnInverterByItsContents)
{
    postMapMap(R"(
        module top(in clk, d, out q, p, o)
            n: KVR_LUT1(I0=clk, O=inv) #INIT=01
            b: KVR_LUT1(I0=clk, O=buf) #INIT=10
            x: KVR_LUT1(I0=clk, O=other)
            r: KVR_FF(C=inv, D=d, Q=q)
            s: KVR_FF(C=buf, D=d, Q=p)
            t: KVR_FF(C=other, D=d, Q=o)
        end)");
    EXPECT_EQ(clocks(), "clk port rise+fall 2 = buf = inv\nother logic rise 1 <- clk\n");
}

TEST_F(ElectricalClocks, ClocksOfOneGeneratorAreRelatedThroughItsClockInput)
{
    elaboratedMap(text(R"(
        blackbox PLL(in CLKIN, RST, out CLKOUT0, CLKOUT1) @NETLISTDB_CELL_KIND=pll end
        blackbox OTHER(in CLKIN, out CLKOUT) end
        module top(in ref, rst, d, out q, p, o)
            pll: PLL(CLKIN=ref, RST=rst, CLKOUT0=c0, CLKOUT1=c1)
            box: OTHER(CLKIN=ref, CLKOUT=c2)
            r: DFF(clk=c0, d=d, q=q)
            s: DFF(clk=c1, d=d, q=p)
            t: DFF(clk=c2, d=d, q=o)
        end)")
                      .c_str());
    EXPECT_EQ(clocks(), "c0 black-box rise 1 <- ref\nc1 black-box rise 1 <- ref\nc2 black-box rise 1\nref port  0\n");
    EXPECT_TRUE(map->related(*map->find("c0"), *map->find("c1")));
    EXPECT_FALSE(map->related(*map->find("c0"), *map->find("c2")));
    EXPECT_EQ(capture("rst"), "| box");
}

TEST_F(ElectricalClocks, AWordOfBuffersPassesEachClockOnItsOwnBit)
{
    elaboratedMap(text(R"(
        operator $pos(in [1:0] A, out [1:0] Y) end
        operator $not(in [1:0] A, out [1:0] Y) end
        module top(in [1:0] clk, in d, out q, p)
            b: $pos(A=clk, Y={y1, y0})
            n: $not(A={y1, y0}, Y={z1, z0})
            r: DFF(clk=y1, d=d, q=q)
            s: DFF(clk=z0, d=d, q=p)
        end)")
                      .c_str());
    EXPECT_EQ(electrical("y1"), "port clk[1] (clock)");
    EXPECT_EQ(electrical("z0"), "port clk[0] inverted (clock)");
}

TEST_F(ElectricalClocks, SeveralDriversMakeANetTheRootOfItsOwn)
{
    elaboratedMap(text(R"(
        module top(in a, b, d, out q)
            x: $_BUF_(A=a, Y=y)
            z: $_BUF_(A=b, Y=y)
            r: DFF(clk=y, d=d, q=q)
        end)")
                      .c_str());
    EXPECT_EQ(clocks(), "y logic rise 1\n");
}

} // namespace
} // namespace analysis_test
