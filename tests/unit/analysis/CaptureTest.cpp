#include "tests/unit/analysis/MapTest.h"

namespace analysis_test {
namespace {

class Capture : public MapTest {};

TEST_F(Capture, DataEnableAndResetAreToldApart)
{
    elaboratedMap(R"(
        operator $dffe(in CLK, EN, D, out Q) end
        operator $adff(in CLK, ARST, D, out Q) end
        operator $sdff(in CLK, SRST, D, out Q) end
        primitive $_AND_(in A, B, out Y) type=7 end
        module top(in a, b, d, e, r, both, out q, p, o)
            x: $dffe(CLK=a, EN=e, D=d, Q=q)
            y: $adff(CLK=b, ARST=r, D=d, Q=p)
            z: $sdff(CLK=b, SRST=r, D=both, Q=o)
            g: $_AND_(A=both, B=both, Y=r)
        end)");
    EXPECT_EQ(capture("d"), "a:data b:data");
    EXPECT_EQ(capture("e"), "a:enable");
    EXPECT_EQ(capture("r"), "b:reset");
    EXPECT_EQ(capture("both"), "b:data+reset");
    EXPECT_EQ(capture("q"), "| port");
}

TEST_F(Capture, AClockPinCapturesNothingAndIsNamed)
{
    elaboratedMap(R"(
        register DFF(in d, clk, out q) clock=clk end
        primitive $_AND_(in A, B, out Y) type=7 end
        module top(in clk, en, d, out q)
            g: $_AND_(A=clk, B=en, Y=gated)
            r: DFF(clk=gated, d=d, q=q)
        end)");
    EXPECT_EQ(capture("en"), "| clock-pin");
    EXPECT_EQ(capture("gated"), "| clock-pin");
}

TEST_F(Capture, LatchesAreLookedThroughAndBlackBoxesEndIt)
{
    elaboratedMap(R"(
        register DFF(in d, clk, out q) clock=clk end
        operator $dlatch(in D, EN, out Q) end
        blackbox BOX(in A, out Y) end
        module top(in clk, en, d, out q)
            l: $dlatch(D=d, EN=en, Q=held)
            r: DFF(clk=clk, d=held, q=q)
            k: BOX(A=held, Y=y)
        end)");
    EXPECT_EQ(capture("held"), "clk:data | box");
    EXPECT_EQ(capture("d"), "clk:data | box latch");
}

TEST_F(Capture, RegistersInsideInstancesCaptureWithTheClockOfTheInstance)
{
    elaboratedMap(R"(
        register DFF(in d, clk, out q) clock=clk end
        module leaf(in ck, d, out q, copy)
            r: DFF(clk=ck, d=d, q=q)
            connect copy=d
        end
        module top(in a, b, d)
            u: leaf(ck=a, d=d, q=q, copy=c)
            v: leaf(ck=b, d=c, q=p)
        end)");
    EXPECT_EQ(capture("d"), "a:data b:data");
    EXPECT_EQ(capture("c"), "b:data");
    EXPECT_EQ(capture("d", "v"), "b:data");
    EXPECT_EQ(capture("d", "u"), "a:data b:data");
}

} // namespace
} // namespace analysis_test
