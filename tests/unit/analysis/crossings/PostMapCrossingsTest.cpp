#include "tests/unit/analysis/crossings/CrossingsTest.h"

using namespace kvr::netlistdb::analysis;

namespace crossings_test {
namespace {

class PostMapCrossingsTest : public CrossingsTest {
  protected:
    void design(const std::string &contents)
    {
        postMap(R"(
            blackbox KVR_FF(in C clock, D, E, R, out Q) end
            blackbox KVR_LUT1(in I0, out O) end
            blackbox KVR_LUT2(in I0, I1, out O) end
            blackbox KVR_LUT3(in I0, I1, I2, out O) end
            blackbox KVR_SRL16(in C clock, D, E, out Q) end
            blackbox KVR_RAMD16X4(in W_CLK clock, W_EN, W_ADDR, W_DATA, R_ADDR, out R_DATA) end
            blackbox KVR_DPRAM512X8(in CLK_A clock, ADDR_A, DATA_A, CLK_B clock, ADDR_B, DATA_B, out Q_A, Q_B) end
            blackbox KVR_DSP48(in CLK clock, CE, A, B, out P) end
            )" + contents);
    }
};

TEST_F(PostMapCrossingsTest, AShiftRegisterIsNoSynchronizer)
{
    design(R"(module top(in clk_a, clk_b, d, out q)
        a: KVR_FF(C=clk_a, D=d, Q=x)
        s: KVR_SRL16(C=clk_b, D=x, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b x>s.D no-flip-flop"});
}

TEST_F(PostMapCrossingsTest, AMultiplierIsNoFlipFlopUnlessItsEnableIsSynchronized)
{
    design(R"(module top(in clk_a, clk_b, d, r, out p, q)
        a: KVR_FF(C=clk_a, D=d, Q=x)
        r: KVR_FF(C=clk_a, D=r, Q=y)
        b1: KVR_FF(C=clk_b, D=y, Q=first)
        b2: KVR_FF(C=clk_b, D=first, Q=go)
        bare: KVR_DSP48(CLK=clk_b, A=x, P=p)
        led: KVR_DSP48(CLK=clk_b, A=x, CE=go, P=q)
    end)");
    EXPECT_EQ(crossingTo("bare").kind, CrossingClass::NoFlipFlop);
    EXPECT_EQ(crossingTo("led").kind, CrossingClass::EnableControlled);
}

TEST_F(PostMapCrossingsTest, ALookUpTableBlocksAsItsContentsSay)
{
    const std::string before = R"(module top(in clk_a, clk_b, d, r, out q)
        a: KVR_FF(C=clk_a, D=d, Q=x)
        r: KVR_FF(C=clk_a, D=r, Q=y)
        b1: KVR_FF(C=clk_b, D=y, Q=first)
        b2: KVR_FF(C=clk_b, D=first, Q=go)
        b3: KVR_FF(C=clk_b, D=go, Q=last)
        t: KVR_FF(C=clk_b, D=z, Q=q)
        l: )";
    // x passes while go and last differ; otherwise 0.
    design(before + "KVR_LUT3(I0=x, I1=go, I2=last, O=z) #INIT=00101000 end");
    EXPECT_EQ(crossingTo("q").kind, CrossingClass::MultiplexerControlled);
    database.reset(source);
    design(before + "KVR_LUT2(I0=x, I1=last, O=z) #INIT=1000 end");
    EXPECT_EQ(crossingTo("q").kind, CrossingClass::MultiplexerControlled);
    database.reset(source);
    design(before + "KVR_LUT2(I0=x, I1=last, O=z) #INIT=0110 end");
    EXPECT_EQ(crossingTo("q").kind, CrossingClass::UnsynchronizedBit);
    database.reset(source);
    // The register's own value while last is low.
    design(before + "KVR_LUT3(I0=q, I1=x, I2=last, O=z) #INIT=11001010 end");
    EXPECT_EQ(crossingTo("q").kind, CrossingClass::HoldingMultiplexer);
}

TEST_F(PostMapCrossingsTest, AGrayCounterIsKnownFromItsTables)
{
    // The counter b, and g that captures its next value in Gray code: next is {b1 ^ b0, ~b0}.
    design(R"(module top(in clk_a, clk_b, out [1:0] q)
        l0: KVR_LUT1(I0=b0, O=x0) #INIT=01
        l1: KVR_LUT2(I0=b0, I1=b1, O=x1) #INIT=0110
        lg: KVR_LUT1(I0=b1, O=y0) #INIT=01
        b0: KVR_FF(C=clk_a, D=x0, Q=b0)
        b1: KVR_FF(C=clk_a, D=x1, Q=b1)
        g0: KVR_FF(C=clk_a, D=y0, Q="g[0]")
        g1: KVR_FF(C=clk_a, D=x1, Q="g[1]")
        f0: KVR_FF(C=clk_b, D="g[0]", Q="f[0]")
        f1: KVR_FF(C=clk_b, D="g[1]", Q="f[1]")
        h0: KVR_FF(C=clk_b, D="f[0]", Q=q[0])
        h1: KVR_FF(C=clk_b, D="f[1]", Q=q[1])
    end)");
    EXPECT_EQ(lines(), (Lines{"clk_a>clk_b g[0]>f[0].D gray-bus-unkept", "clk_a>clk_b g[1]>f[1].D gray-bus-unkept"}));
}

TEST_F(PostMapCrossingsTest, AMemoryWithTwoSidesCrossesBothWays)
{
    design(R"(module top(in clk_a, clk_b, a, d, out p, q)
        m: KVR_DPRAM512X8(CLK_A=clk_a, ADDR_A=a, DATA_A=d, CLK_B=clk_b, ADDR_B=a, DATA_B=d, Q_A=p, Q_B=q)
    end)");
    EXPECT_EQ(lines(), (Lines{"clk_a>clk_b m>m memory", "clk_b>clk_a m>m memory"}));
}

TEST_F(PostMapCrossingsTest, AMemoryThatShowsAtOnceCrossesAtTheNextRegister)
{
    design(R"(module top(in clk_a, clk_b, a, d, out q)
        m: KVR_RAMD16X4(W_CLK=clk_a, W_ADDR=a, W_DATA=d, R_ADDR=a, R_DATA=x)
        b: KVR_FF(C=clk_b, D=x, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b m>q.D memory"});
}

TEST_F(PostMapCrossingsTest, ASynchronousResetIsOrdinaryData)
{
    design(R"(module top(in clk_a, clk_b, rst, d, out p, q)
        a: KVR_FF(C=clk_a, D=d, R=rst, Q=x) #R_ASYNC=0
        b: KVR_FF(C=clk_b, D=d, R=x, Q=q) #R_ASYNC=0
        c: KVR_FF(C=clk_b, D=d, R=rst, Q=p) #R_ASYNC=1
    end)");
    EXPECT_EQ(lines(), (Lines{"none>clk_b rst>p.R unsynchronized-reset", "clk_a>clk_b x>q.R unsynchronized-bit"}));
}

} // namespace
} // namespace crossings_test
