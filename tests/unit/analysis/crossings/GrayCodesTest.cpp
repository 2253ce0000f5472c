#include "tests/unit/analysis/crossings/CrossingsTest.h"

namespace crossings_test {
namespace {

/// A word `g` of two bits on clk_a that is synchronized bit by bit; what it captures is up to the test.
const std::string SYNCHRONIZED_WORD = R"(
    operator $add(in [1:0] A, [1:0] B, out [1:0] Y) end
    module top(in clk_a, clk_b, [1:0] d, e, out [1:0] q)
        g0: $_DFF_P_(C=clk_a, D=n0, Q="g[0]")
        g1: $_DFF_P_(C=clk_a, D=n1, Q="g[1]")
        f0: $_DFF_P_(C=clk_b, D="g[0]", Q="f[0]")
        f1: $_DFF_P_(C=clk_b, D="g[1]", Q="f[1]")
        h0: $_DFF_P_(C=clk_b, D="f[0]", Q=q[0])
        h1: $_DFF_P_(C=clk_b, D="f[1]", Q=q[1])
        )";

class GrayCodesTest : public CrossingsTest {
  protected:
    CrossingClass classOf(const std::string &cells)
    {
        elaborated(SYNCHRONIZED_WORD + cells + " end");
        const CrossingClass kind = crossingTo("f[0]").kind;
        EXPECT_EQ(crossingTo("f[1]").kind, kind);
        return kind;
    }
};

TEST_F(GrayCodesTest, ACounterThatIsConvertedIsKnown)
{
    EXPECT_EQ(classOf(R"(c: $add(A={b1, b0}, B={d[1], d[0]}, Y={n1, x0})
        b0: $_DFF_P_(C=clk_a, D=x0, Q=b0)
        b1: $_DFF_P_(C=clk_a, D=n1, Q=b1)
        y: $_XOR_(A=n1, B=x0, Y=n0))"),
              CrossingClass::GrayBusUnkept);
}

TEST_F(GrayCodesTest, TwoAddersOfTheSameOperandsAreOne)
{
    EXPECT_EQ(classOf(R"(c: $add(A={b1, b0}, B={d[1], d[0]}, Y={n1, x0})
        c2: $add(A={b1, b0}, B={d[1], d[0]}, Y={m1, m0})
        b0: $_DFF_P_(C=clk_a, D=m0, Q=b0)
        b1: $_DFF_P_(C=clk_a, D=m1, Q=b1)
        y: $_XOR_(A=m1, B=x0, Y=n0))"),
              CrossingClass::GrayBusUnkept);
}

TEST_F(GrayCodesTest, AConverterNeedsNoCounter)
{
    EXPECT_EQ(classOf(R"(p: $_AND_(A=d[1], B=e, Y=n1)
        y: $_XOR_(A=n1, B=d[0], Y=n0))"),
              CrossingClass::GrayBusUnkept);
}

TEST_F(GrayCodesTest, AWordThatIsHeldStaysGray)
{
    EXPECT_EQ(classOf(R"(c: $add(A={b1, b0}, B={d[1], d[0]}, Y={x1, x0})
        m0: $_MUX_(A=b0, B=x0, S=e, Y=y0)
        m1: $_MUX_(A=b1, B=x1, S=e, Y=y1)
        b0: $_DFF_P_(C=clk_a, D=y0, Q=b0)
        b1: $_DFF_P_(C=clk_a, D=y1, Q=b1)
        z: $_XOR_(A=x1, B=x0, Y=z0)
        h: $_MUX_(A="g[0]", B=z0, S=e, Y=n0)
        i: $_MUX_(A="g[1]", B=x1, S=e, Y=n1))"),
              CrossingClass::GrayBusUnkept);
}

TEST_F(GrayCodesTest, ACounterThatIsNotConvertedIsNoGrayCode)
{
    EXPECT_EQ(classOf(R"(c: $add(A={"g[1]", "g[0]"}, B={d[1], d[0]}, Y={n1, n0}))"),
              CrossingClass::SynchronizedBusUnkept);
}

TEST_F(GrayCodesTest, BitsThatAreHeldByDifferentEnablesAreNoGrayCode)
{
    EXPECT_EQ(classOf(R"(z: $_XOR_(A=d[1], B=d[0], Y=z0)
        h: $_MUX_(A="g[0]", B=z0, S=e, Y=n0)
        i: $_MUX_(A="g[1]", B=d[1], S=d[0], Y=n1))"),
              CrossingClass::SynchronizedBusUnkept);
}

TEST_F(GrayCodesTest, AConstantIsNoGrayCode)
{
    EXPECT_EQ(classOf("o: ONE(Y=n1) p: ONE(Y=n0)"), CrossingClass::SynchronizedBusUnkept);
}

TEST_F(GrayCodesTest, LogicWithLoopsEnds)
{
    EXPECT_EQ(classOf(R"(x: $_AND_(A=n1, B=d[0], Y=n0)
        y: $_AND_(A=n0, B=d[1], Y=n1))"),
              CrossingClass::SynchronizedBusUnkept);
}

} // namespace
} // namespace crossings_test
