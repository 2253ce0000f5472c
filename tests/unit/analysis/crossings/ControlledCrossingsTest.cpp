#include "tests/unit/analysis/crossings/CrossingsTest.h"

using namespace kvr::netlistdb::analysis;

namespace crossings_test {
namespace {

/// Register `data` on clk_a, and `taken`: a request that was synchronized to clk_b.
const std::string SYNCHRONIZED = R"(module top(in clk_a, clk_b, d, r, out q, p)
        data: $_DFF_P_(C=clk_a, D=d, Q=data)
        request: $_DFF_P_(C=clk_a, D=r, Q=request)
        b1: $_DFF_P_(C=clk_b, D=request, Q=first)
        b2: $_DFF_P_(C=clk_b, D=first, Q=taken)
        )";

class ControlledCrossingsTest : public CrossingsTest {
  protected:
    void withTarget(const std::string &cells) { elaborated(SYNCHRONIZED + cells + " end"); }
};

TEST_F(ControlledCrossingsTest, ASynchronizedClockEnableControls)
{
    withTarget("t: $_DFFE_PP_(C=clk_b, D=data, E=taken, Q=q)");
    EXPECT_EQ(classesOf("q"), (Lines{"enable-controlled", "unsynchronized-bit"}));
    EXPECT_EQ(crossingTo("q").severity(), Severity::Warning);
    EXPECT_EQ(crossingTo("q").control, "taken");
}

TEST_F(ControlledCrossingsTest, AnEdgeDetectorBehindTheSynchronizerCountsToo)
{
    withTarget(R"(last: $_DFF_P_(C=clk_b, D=taken, Q=last)
        x: $_XOR_(A=taken, B=last, Y=changed)
        late: $_DFF_P_(C=clk_b, D=changed, Q=pulse)
        t: $_DFFE_PP_(C=clk_b, D=data, E=pulse, Q=q))");
    EXPECT_EQ(crossingTo("q").kind, CrossingClass::EnableControlled);
    EXPECT_EQ(crossingTo("q").control, "pulse");
}

TEST_F(ControlledCrossingsTest, RegistersFarBehindTheSynchronizerCountNot)
{
    withTarget(R"(x0: $_AND_(A=taken, B=p, Y=y)
        r1: $_DFF_P_(C=clk_b, D=y, Q=p)
        r2: $_DFF_P_(C=clk_b, D=p, Q=p2)
        r3: $_DFF_P_(C=clk_b, D=p2, Q=p3)
        t: $_DFFE_PP_(C=clk_b, D=data, E=p3, Q=q))");
    EXPECT_EQ(crossingTo("q").kind, CrossingClass::UnsynchronizedBit);
}

TEST_F(ControlledCrossingsTest, AnEnableFromElsewhereControlsNothing)
{
    withTarget("t: $_DFFE_PP_(C=clk_b, D=data, E=d, Q=q)");
    EXPECT_EQ(crossingTo("q").kind, CrossingClass::UnsynchronizedBit);
}

TEST_F(ControlledCrossingsTest, AnEnableThatCrossesIsNotItsOwnControl)
{
    withTarget("t: $_DFFE_PP_(C=clk_b, D=d, E=data, Q=q)");
    EXPECT_EQ(crossingTo("q").kind, CrossingClass::UnsynchronizedBit);
    EXPECT_EQ(crossingTo("q").to.pin, "E");
}

TEST_F(ControlledCrossingsTest, ASynchronizerFromAnotherClockControlsNothing)
{
    elaborated(R"(module top(in clk_a, clk_b, clk_c, d, r, out q)
        data: $_DFF_P_(C=clk_a, D=d, Q=data)
        request: $_DFF_P_(C=clk_c, D=r, Q=request)
        b1: $_DFF_P_(C=clk_b, D=request, Q=first)
        b2: $_DFF_P_(C=clk_b, D=first, Q=taken)
        t: $_DFFE_PP_(C=clk_b, D=data, E=taken, Q=q)
    end)");
    EXPECT_EQ(crossingTo("q").kind, CrossingClass::UnsynchronizedBit);
}

TEST_F(ControlledCrossingsTest, AMultiplexerThatHoldsIsTold)
{
    withTarget("m: $_MUX_(A=q, B=data, S=taken, Y=y) t: $_DFF_P_(C=clk_b, D=y, Q=q)");
    EXPECT_EQ(crossingTo("q").kind, CrossingClass::HoldingMultiplexer);
}

TEST_F(ControlledCrossingsTest, AMultiplexerThatShowsSomethingElseIsTold)
{
    withTarget("m: $_MUX_(A=d, B=data, S=taken, Y=y) t: $_DFF_P_(C=clk_b, D=y, Q=q)");
    EXPECT_EQ(crossingTo("q").kind, CrossingClass::MultiplexerControlled);
}

TEST_F(ControlledCrossingsTest, AGateIsAMultiplexerWithAConstant)
{
    withTarget("g: $_AND_(A=data, B=taken, Y=y) t: $_DFF_P_(C=clk_b, D=y, Q=q)");
    EXPECT_EQ(crossingTo("q").kind, CrossingClass::MultiplexerControlled);
}

TEST_F(ControlledCrossingsTest, AGateThatNeverBlocksControlsNothing)
{
    withTarget("g: $_XOR_(A=data, B=taken, Y=y) t: $_DFF_P_(C=clk_b, D=y, Q=q)");
    EXPECT_EQ(crossingTo("q").kind, CrossingClass::UnsynchronizedBit);
}

TEST_F(ControlledCrossingsTest, OneOpenWayIsEnough)
{
    withTarget(R"(m: $_MUX_(A=d, B=data, S=taken, Y=y)
        g: $_XOR_(A=y, B=data, Y=z)
        t: $_DFF_P_(C=clk_b, D=z, Q=q))");
    EXPECT_EQ(crossingTo("q").kind, CrossingClass::UnsynchronizedBit);
}

TEST_F(ControlledCrossingsTest, AnEnableMixedWithSomethingUnsynchronizedControlsNothing)
{
    withTarget("x: $_XOR_(A=data, B=taken, Y=e) t: $_DFFE_PP_(C=clk_b, D=data, E=e, Q=q)");
    const Crossings crossings(*map);
    for (const Crossing &crossing : crossings.all()) {
        EXPECT_TRUE(crossing.to.name != "q" || crossing.kind == CrossingClass::UnsynchronizedBit) << crossing.to.pin;
    }
}

TEST_F(ControlledCrossingsTest, AnEnableMixedWithSomethingThatIsControlledControls)
{
    withTarget("x: $_AND_(A=data, B=taken, Y=e) t: $_DFFE_PP_(C=clk_b, D=data, E=e, Q=q)");
    const Crossings crossings(*map);
    for (const Crossing &crossing : crossings.all()) {
        const CrossingClass expected =
            crossing.to.pin == "E" ? CrossingClass::MultiplexerControlled : CrossingClass::EnableControlled;
        EXPECT_TRUE(crossing.to.name != "q" || crossing.kind == expected) << crossing.to.pin;
    }
}

TEST_F(ControlledCrossingsTest, ASelectThatCrossesIsNotBlocked)
{
    withTarget("m: $_MUX_(A=taken, B=d, S=data, Y=y) t: $_DFF_P_(C=clk_b, D=y, Q=q)");
    EXPECT_EQ(crossingTo("q").kind, CrossingClass::UnsynchronizedBit);
}

TEST_F(ControlledCrossingsTest, AWideMultiplexerIsOpenedByItsSelects)
{
    elaborated("operator $pmux(in [1:0] A, [7:0] B, [3:0] S, out [1:0] Y) end " + SYNCHRONIZED +
               R"(m: $pmux(A={d, d}, B={d, data, d, d, d, d, d, d}, S={taken, d, d, d}, Y={u, y})
        t: $_DFF_P_(C=clk_b, D=y, Q=q) end)");
    EXPECT_EQ(crossingTo("q").kind, CrossingClass::MultiplexerControlled);
}

} // namespace
} // namespace crossings_test
