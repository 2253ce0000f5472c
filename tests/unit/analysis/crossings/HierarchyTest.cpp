#include "tests/unit/analysis/crossings/CrossingsTest.h"

namespace crossings_test {
namespace {

using HierarchyTest = CrossingsTest;

constexpr const char *MODULES = R"(
    module source(in clk, d, out q)
        a: $_DFF_P_(C=clk, D=d, Q=q)
    end
    module two(in clk, d, out q)
        b1: $_DFF_P_(C=clk, D=d, Q=first)
        b2: $_DFF_P_(C=clk, D=first, Q=q)
    end
)";

TEST_F(HierarchyTest, CrossingsAreFoundAcrossInstances)
{
    elaborated(std::string(MODULES) + R"(module top(in clk_a, clk_b, d, out q)
        u_a: source(clk=clk_a, d=d, q=x)
        u_b: two(clk=clk_b, d=x, q=q)
    end)");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b u_a/q>u_b/first.D synchronized-bit-unkept"});
    const Crossing crossing = crossingTo("u_b/first");
    EXPECT_EQ(crossing.to.cell, "u_b/b1");
    EXPECT_EQ(crossing.to.instance->getPath(), "u_b");
    EXPECT_EQ(crossing.to.net->getName(), "first");
}

TEST_F(HierarchyTest, AModuleOnTwoPairsOfClocksIsToldApart)
{
    elaborated(std::string(MODULES) + R"(module top(in clk_a, clk_b, d, out p, q, r)
        u_a: source(clk=clk_a, d=d, q=x)
        u_b: source(clk=clk_b, d=d, q=y)
        u_ab: two(clk=clk_b, d=x, q=p)
        u_ba: two(clk=clk_a, d=y, q=q)
        u_aa: two(clk=clk_a, d=x, q=r)
    end)");
    EXPECT_EQ(lines(), (Lines{"clk_a>clk_b u_a/q>u_ab/first.D synchronized-bit-unkept",
                              "clk_b>clk_a u_b/q>u_ba/first.D synchronized-bit-unkept"}));
}

TEST_F(HierarchyTest, EveryInstanceOfAModuleHasItsOwnCrossing)
{
    elaborated(std::string(MODULES) + R"(
    module pair(in clk_a, clk_b, d, out q)
        u_a: source(clk=clk_a, d=d, q=x)
        u_b: two(clk=clk_b, d=x, q=q)
    end
    module top(in clk_a, clk_b, d, out p, q)
        u_1: pair(clk_a=clk_a, clk_b=clk_b, d=d, q=p)
        u_2: pair(clk_a=clk_a, clk_b=clk_b, d=d, q=q)
        u_3: pair(clk_a=clk_a, clk_b=clk_a, d=d, q=r)
    end)");
    EXPECT_EQ(lines(), (Lines{"clk_a>clk_b u_1/u_a/q>u_1/u_b/first.D synchronized-bit-unkept",
                              "clk_a>clk_b u_2/u_a/q>u_2/u_b/first.D synchronized-bit-unkept"}));
}

TEST_F(HierarchyTest, AClockMadeInsideAnInstanceIsAClockOfItsOwn)
{
    elaborated(std::string(MODULES) + R"(
    module maker(in clk, d, out q)
        n: $_NOT_(A=half, Y=not_half)
        h: $_DFF_P_(C=clk, D=not_half, Q=half)
        a: $_DFF_P_(C=half, D=d, Q=q)
    end
    module top(in clk, d, out q)
        u_1: maker(clk=clk, d=d, q=x)
        u_2: maker(clk=clk, d=x, q=q)
    end)");
    EXPECT_EQ(lines(), Lines{"u_1/half>u_2/half u_1/q>u_2/q.D related-clocks"});
}

TEST_F(HierarchyTest, ALatchOnAClockThatClocksNothingInThatInstanceIsNoTarget)
{
    elaborated(std::string(MODULES) + R"(
    module maker(in clk, d, out c, q)
        n: $_NOT_(A=c, Y=not_c)
        h: $_DFF_P_(C=clk, D=not_c, Q=c)
        l: $_DLATCH_P_(E=c, D=d, Q=q)
    end
    module top(in clk_a, clk_b, d, out p, q, r)
        u_a: source(clk=clk_a, d=d, q=x)
        u_1: maker(clk=clk_b, d=x, c=made, q=p)
        u_2: maker(clk=clk_b, d=x, q=q)
        b: $_DFF_P_(C=made, D=d, Q=r)
    end)");
    EXPECT_EQ(lines(), Lines{"clk_a>u_1/c u_a/q>u_1/q.D no-flip-flop"});
}

TEST_F(HierarchyTest, APortThatLeadsTheFirstStageOutIsAnotherUse)
{
    elaborated(std::string(MODULES) + R"(
    module open(in clk, d, out q, first)
        b1: $_DFF_P_(C=clk, D=d, Q=first)
        b2: $_DFF_P_(C=clk, D=first, Q=q)
    end
    module top(in clk_a, clk_b, d, out p, q, r)
        u_a: source(clk=clk_a, d=d, q=x)
        u_b: open(clk=clk_b, d=x, q=p, first=y)
        g: $_AND_(A=y, B=d, Y=r)
        u_c: source(clk=clk_a, d=d, q=z)
        u_d: open(clk=clk_b, d=z, q=q)
    end)");
    EXPECT_EQ(lines(), (Lines{"clk_a>clk_b u_a/q>u_b/first.D unsynchronized-bit",
                              "clk_a>clk_b u_c/q>u_d/first.D synchronized-bit-unkept"}));
}

} // namespace
} // namespace crossings_test
