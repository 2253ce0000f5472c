#include "tests/unit/analysis/crossings/CrossingsTest.h"

using namespace kvr::netlistdb::analysis;

namespace crossings_test {
namespace {

using ResetCrossingsTest = CrossingsTest;

TEST_F(ResetCrossingsTest, AResetFromAPortIsUnsafe)
{
    elaborated(R"(module top(in clk, rst, d, out q)
        b: $_DFF_PN0_(C=clk, D=d, R=rst, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines{"none>clk rst>q.R unsynchronized-reset"});
    EXPECT_EQ(crossingTo("q").launch, std::nullopt);
    EXPECT_TRUE(crossingTo("q").from.cell.empty());
}

TEST_F(ResetCrossingsTest, AResetFromARegisterOfAnotherClockIsUnsafe)
{
    elaborated(R"(module top(in clk_a, clk_b, d, out q)
        a: $_DFF_P_(C=clk_a, D=d, Q=rst)
        b: $_DFF_PN0_(C=clk_b, D=d, R=rst, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b rst>q.R unsynchronized-reset"});
}

TEST_F(ResetCrossingsTest, AResetOfTheSameClockIsNoCrossing)
{
    elaborated(R"(module top(in clk, d, out q)
        a: $_DFF_P_(C=clk, D=d, Q=rst)
        b: $_DFF_PN0_(C=clk, D=d, R=rst, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines());
}

TEST_F(ResetCrossingsTest, AChainReleasesAResetInStep)
{
    elaborated(R"(module top(in clk, rst, d, out q)
        net r1 @async_reg=TRUE
        net r2 @async_reg=TRUE
        one: ONE(Y=one)
        b1: $_DFF_PN0_(C=clk, D=one, R=rst, Q=r1)
        b2: $_DFF_PN0_(C=clk, D=r1, R=rst, Q=r2)
        c: $_DFF_PN0_(C=clk, D=d, R=r2, Q=q)
    end)");
    EXPECT_EQ(lines(), (Lines{"none>clk rst>r1.R synchronized-reset", "none>clk rst>r2.R synchronized-reset"}));
    EXPECT_EQ(crossingTo("r2").stages, 2U);
}

TEST_F(ResetCrossingsTest, AChainWithoutAttributeIsAWarning)
{
    elaborated(R"(module top(in clk, rst, d, out q)
        one: ONE(Y=one)
        b1: $_DFF_PN0_(C=clk, D=one, R=rst, Q=r1)
        b2: $_DFF_PN0_(C=clk, D=r1, R=rst, Q=r2)
        c: $_DFF_PN0_(C=clk, D=d, R=r2, Q=q)
    end)");
    EXPECT_EQ(lines(),
              (Lines{"none>clk rst>r1.R synchronized-reset-unkept", "none>clk rst>r2.R synchronized-reset-unkept"}));
}

TEST_F(ResetCrossingsTest, AChainBeginsWithAConstant)
{
    elaborated(R"(module top(in clk, rst, d, out q)
        b1: $_DFF_PN0_(C=clk, D=d, R=rst, Q=r1)
        b2: $_DFF_PN0_(C=clk, D=r1, R=rst, Q=q)
    end)");
    EXPECT_EQ(lines(), (Lines{"none>clk rst>q.R unsynchronized-reset", "none>clk rst>r1.R unsynchronized-reset"}));
}

TEST_F(ResetCrossingsTest, OneFlipFlopIsNoChain)
{
    elaborated(R"(module top(in clk, rst, d, out q)
        one: ONE(Y=one)
        b1: $_DFF_PN0_(C=clk, D=one, R=rst, Q=r1)
        c: $_DFF_PN0_(C=clk, D=d, R=r1, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines{"none>clk rst>r1.R unsynchronized-reset"});
}

TEST_F(ResetCrossingsTest, AllFlipFlopsOfAChainHaveTheSameReset)
{
    elaborated(R"(module top(in clk, rst, other, d, out q)
        one: ONE(Y=one)
        b1: $_DFF_PN0_(C=clk, D=one, R=other, Q=r1)
        b2: $_DFF_PN0_(C=clk, D=r1, R=rst, Q=q)
    end)");
    EXPECT_EQ(lines(), (Lines{"none>clk rst>q.R unsynchronized-reset", "none>clk other>r1.R unsynchronized-reset"}));
}

TEST_F(ResetCrossingsTest, AResetThroughASynchronizerIsOrdinaryData)
{
    elaborated(R"(module top(in clk_a, clk_b, d, out q)
        a: $_DFF_P_(C=clk_a, D=d, Q=rst)
        b1: $_DFF_P_(C=clk_b, D=rst, Q=r1)
        b2: $_DFF_P_(C=clk_b, D=r1, Q=r2)
        c: $_DFF_PN0_(C=clk_b, D=d, R=r2, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b rst>r1.D synchronized-bit-unkept"});
}

TEST_F(ResetCrossingsTest, AResetOfARelatedClockIsTold)
{
    elaborated(R"(module top(in clk, d, out q)
        n: $_NOT_(A=half, Y=not_half)
        h: $_DFF_P_(C=clk, D=not_half, Q=half)
        a: $_DFF_P_(C=clk, D=d, Q=rst)
        b: $_DFF_PN0_(C=half, D=d, R=rst, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines{"clk>half rst>q.R related-clocks"});
}

TEST_F(ResetCrossingsTest, ABlackBoxResetsWithoutAClock)
{
    elaborated(R"(blackbox BOX(out locked) end
        module top(in clk, d, out q)
        x: BOX(locked=ok)
        b: $_DFF_PN0_(C=clk, D=d, R=ok, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines{"none>clk ok>q.R unsynchronized-reset"});
    EXPECT_EQ(crossingTo("q").from.cell, "x");
}

} // namespace
} // namespace crossings_test
