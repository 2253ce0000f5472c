#include "tests/unit/analysis/crossings/CrossingsTest.h"

namespace crossings_test {
namespace {

using MemoryCrossingsTest = CrossingsTest;

constexpr const char *WHOLE = R"(
    operator $mem_v2(in RD_CLK, RD_EN, RD_ADDR, WR_CLK, WR_EN, WR_ADDR, WR_DATA, out RD_DATA) end
    module top(in clk_a, clk_b, a, d, out q)
        m: $mem_v2(RD_CLK=clk_b, RD_ADDR=a, WR_CLK=clk_a, WR_ADDR=a, WR_DATA=d, RD_DATA=y)
            #RD_PORTS=1 #WR_PORTS=1 #WR_CLK_ENABLE=1 #RD_CLK_ENABLE=)";

TEST_F(MemoryCrossingsTest, AMemoryWithTwoClocksIsACrossing)
{
    elaborated(std::string(WHOLE) + "1 t: $_DFF_P_(C=clk_b, D=y, Q=q) end");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b m>m memory"});
}

TEST_F(MemoryCrossingsTest, WhatShowsAtOnceCrossesAtTheNextRegister)
{
    elaborated(std::string(WHOLE) + "0 t: $_DFF_P_(C=clk_b, D=y, Q=q) end");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b m>q.D memory"});
}

TEST_F(MemoryCrossingsTest, OneClockIsNoCrossing)
{
    elaborated(std::string(WHOLE) + "0 t: $_DFF_P_(C=clk_a, D=y, Q=q) end");
    EXPECT_EQ(lines(), Lines());
}

TEST_F(MemoryCrossingsTest, TwoFlipFlopsBehindAMemoryAreNoSynchronizer)
{
    elaborated(std::string(WHOLE) + "0 t: $_DFF_P_(C=clk_b, D=y, Q=z) u: $_DFF_P_(C=clk_b, D=z, Q=q) end");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b m>z.D memory"});
}

TEST_F(MemoryCrossingsTest, PortsThatAreCellsOfTheirOwnKnowTheirMemory)
{
    elaborated(R"(
    operator $memwr_v2(in CLK, EN, ADDR, DATA) end
    operator $memrd(in CLK, EN, ADDR, out DATA) end
    module top(in clk_a, clk_b, clk_c, a, d, out p, q)
        w: $memwr_v2(CLK=clk_a, ADDR=a, DATA=d) #CLK_ENABLE=1 #MEMID=\mem
        v: $memwr_v2(CLK=clk_c, ADDR=a, DATA=d) #CLK_ENABLE=1 #MEMID=\other
        r: $memrd(ADDR=a, DATA=y) #CLK_ENABLE=0 #MEMID=\mem
        t: $_DFF_P_(C=clk_b, D=y, Q=p)
        u: $_DFF_P_(C=clk_a, D=y, Q=q)
        x: $_DFF_P_(C=clk_c, D=d, Q=z)
    end)");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b mem>p.D memory"});
}

TEST_F(MemoryCrossingsTest, ForeignDataIntoAMemoryFindsNoFlipFlop)
{
    elaborated(std::string(WHOLE) + R"(1
        a: $_DFF_P_(C=clk_a, D=d, Q=x)
        o: $mem_v2(RD_CLK=clk_b, RD_ADDR=d, WR_CLK=clk_b, WR_ADDR=d, WR_DATA=x, RD_DATA=q)
            #RD_PORTS=1 #WR_PORTS=1 #WR_CLK_ENABLE=1 #RD_CLK_ENABLE=1 end)");
    EXPECT_EQ(lines(), (Lines{"clk_a>clk_b m>m memory", "clk_a>clk_b x>o.WR_DATA no-flip-flop"}));
}

} // namespace
} // namespace crossings_test
