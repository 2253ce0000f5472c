// Why a net of the elaborated form is in no net of the device.

#include "tests/unit/analysis/CrossProbeTest.h"

namespace analysis_test {
namespace {

class GoneReasons : public CrossProbeTest {
  protected:
    /// The reason and the cell that took the net in.
    std::string goneInto(const std::string &net) const
    {
        IVDBInstance *const root = database->getRoot(ELABORATED);
        const ProbeMatch match = probe->find(root, netOf(root, net));
        return text(match) + " " + match.cell;
    }
};

TEST_F(GoneReasons, ConstantWhenARegisterTakesOverNothingButItsResetValue)
{
    load(R"(module top(in clk, rst, a, out y)
                r: $sdff(CLK=clk, SRST=rst, D=a, Q=q) #SRST_VALUE=0
                k: $sdff(CLK=clk, SRST=rst, D=fixed, Q=fixed) #SRST_VALUE=1
                o: $and(A=q, B=fixed, Y=y)
            end)",
         R"(module top(in clk, rst, a, out y)
                r: $_SDFF_PP0_(C=clk, D=a, R=rst, Q=y)
            end)");
    EXPECT_EQ(found("fixed"), "gone constant");
    EXPECT_EQ(found("q"), "merged y");
}

TEST_F(GoneReasons, ConstantOfBothValues)
{
    load(R"(module top(in clk, rst, a, out y)
                n: $not(A=a, Y=m)
                k: $sdff(CLK=clk, SRST=rst, D=zero, Q=zero) #SRST_VALUE=0
                v: $not(A=zero, Y=one)
                o: $and(A=m, B=one, Y=y)
            end)",
         R"(module top(in clk, rst, a, out y)
                n: $_NOT_(A=a, Y=y)
            end)");
    IVDBInstance *const root = database->getRoot(ELABORATED);
    EXPECT_EQ(probe->find(root, netOf(root, "zero")).evidence, "always 0 once reset");
    EXPECT_EQ(probe->find(root, netOf(root, "one")).evidence, "always 1 once reset");
}

TEST_F(GoneReasons, UnusedWhenNoOutputDependsOnIt)
{
    load(R"(module top(in clk, rst, a, b, out y)
                u: $xor(A=b, B=q, Y=unused)
                r: $sdff(CLK=clk, SRST=rst, D=a, Q=q) #SRST_VALUE=0
                o: $and(A=q, B=b, Y=y)
            end)",
         R"(module top(in clk, rst, a, b, out y)
                r: $_SDFF_PP0_(C=clk, D=a, R=rst, Q=q)
                o: $_AND_(A=q, B=b, Y=y)
            end)");
    EXPECT_EQ(found("unused"), "gone unused");
}

TEST_F(GoneReasons, InTheLogicThatComputesWhatFollows)
{
    load(R"(module top(in a, b, c, out y)
                g: $and(A=a, B=b, Y=d)
                o: $xor(A=d, B=c, Y=y)
            end)",
         R"(module top(in a, b, c, out y)
                l: KVR_LUT3(I0=a, I1=b, I2=c, O=y) #INIT=01111000
            end)");
    EXPECT_EQ(goneInto("d"), "gone in-logic l");
}

TEST_F(GoneReasons, InAShiftRegisterAsOneOfItsStages)
{
    load(R"(module top(in clk, a, out y)
                r1: $dff(CLK=clk, D=a, Q=s1)
                r2: $dff(CLK=clk, D=s1, Q=s2)
                r3: $dff(CLK=clk, D=s2, Q=y)
            end)",
         R"(primitive VCC(out O) type=1 end
            primitive GND(out O) type=2 end
            module top(in clk, a, out y)
                v: VCC(O=one)
                g: GND(O=zero)
                s: KVR_SRL16(C=clk, D=a, E=one, A={zero, zero, one, zero}, Q=y)
            end)");
    EXPECT_EQ(goneInto("s1"), "gone in-shift-register s");
    EXPECT_EQ(goneInto("s2"), "gone in-shift-register s");
    EXPECT_EQ(found("y"), "exact y");
}

TEST_F(GoneReasons, InAnArithmeticBlockInFrontOfItsRegister)
{
    load(R"(operator $mul(in [1:0] A, in [1:0] B, out [2:0] Y) end
            module top(in clk, in [1:0] a, in [1:0] b, out y2, y1, y0)
                m: $mul(A=a, B=b, Y={p2, p1, p0})
                r2: $dff(CLK=clk, D=p2, Q=y2)
                r1: $dff(CLK=clk, D=p1, Q=y1)
                r0: $dff(CLK=clk, D=p0, Q=y0)
            end)",
         R"(primitive GND(out O) type=2 end
            primitive VCC(out O) type=1 end
            blackbox KVR_MULT(in CLK clock, CE, in [3:0] A, in [3:0] B, out [2:0] P) end
            module top(in clk, in [1:0] a, in [1:0] b, out y2, y1, y0)
                g: GND(O=zero)
                v: VCC(O=one)
                m: KVR_MULT(CLK=clk, CE=one, A={zero, zero, a[1], a[0]}, B={zero, zero, b[1], b[0]}, P={y2, y1, y0})
            end)");
    for (const char *const net : {"p2", "p1", "p0"}) {
        EXPECT_EQ(goneInto(net), "gone in-dsp m") << net;
    }
}

TEST_F(GoneReasons, InAMemoryInFrontOfItsOutputRegister)
{
    load(R"(operator $memrd(in CLK, EN, in [1:0] ADDR, out DATA) end
            operator $memwr(in CLK, EN, in [1:0] ADDR, in DATA) end
            module top(in clk, we, d, in [1:0] w, in [1:0] r, out y)
                i: $memwr(CLK=clk, EN=we, ADDR=w, DATA=d) #MEMID=m #WIDTH=1 #CLK_ENABLE=1 #CLK_POLARITY=1
                o: $memrd(ADDR=r, DATA=word) #MEMID=m #WIDTH=1 #CLK_ENABLE=0
                q: $dff(CLK=clk, D=word, Q=y)
            end)",
         R"(operator $memrd(in CLK, EN, in [1:0] ADDR, out DATA) end
            operator $memwr(in CLK, EN, in [1:0] ADDR, in DATA) end
            module top(in clk, we, d, in [1:0] w, in [1:0] r, out y)
                i: $memwr(CLK=clk, EN=we, ADDR=w, DATA=d) #MEMID=m #WIDTH=1 #CLK_ENABLE=1 #CLK_POLARITY=1
                o: $memrd(CLK=clk, ADDR=r, DATA=y) #MEMID=m #WIDTH=1 #CLK_ENABLE=1 #CLK_POLARITY=1
            end)");
    EXPECT_EQ(goneInto("word"), "gone in-memory o");
}

TEST_F(GoneReasons, RetimedWhenARegisterMovedBehindTheLogic)
{
    load(R"(module top(in clk, rst, a, b, out y)
                r: $sdff(CLK=clk, SRST=rst, D=a, Q=p) #SRST_VALUE=0
                s: $sdff(CLK=clk, SRST=rst, D=b, Q=q) #SRST_VALUE=0
                o: $and(A=p, B=q, Y=y)
            end)",
         R"(module top(in clk, rst, a, b, out y)
                g: $_AND_(A=a, B=b, Y=d)
                r: $_SDFF_PP0_(C=clk, D=d, R=rst, Q=y)
            end)");
    EXPECT_EQ(found("p"), "gone retimed");
    EXPECT_EQ(found("q"), "gone retimed");
    EXPECT_EQ(found("y"), "exact y");
}

} // namespace
} // namespace analysis_test
