// What is matched, and with which grade.

#include "tests/unit/analysis/CrossProbeTest.h"

namespace analysis_test {
namespace {

TEST_F(CrossProbeTest, ARegisterIsFoundByItsBehaviourWhateverItIsCalled)
{
    load(R"(module top(in clk, rst, a, b, out y)
                g: $xor(A=a, B=b, Y=d)
                r: $sdff(CLK=clk, SRST=rst, D=d, Q=q) #SRST_VALUE=0
                o: $and(A=q, B=b, Y=y)
            end)",
         R"(module top(in clk, rst, a, b, out y)
                g: $_XOR_(A=b, B=a, Y=n1)
                r: $_SDFF_PP0_(C=clk, D=n1, R=rst, Q=n2)
                o: $_AND_(A=n2, B=b, Y=y)
            end)");
    EXPECT_EQ(found("q"), "register n2");
    EXPECT_EQ(found("d"), "structural n1");
    EXPECT_EQ(found("y"), "exact y");
    EXPECT_EQ(foundBack("n2"), "register q");
}

TEST_F(CrossProbeTest, ARegisterThatIsStoredInvertedIsSaidToBe)
{
    load(R"(module top(in clk, rst, a, b, out y)
                r: $sdff(CLK=clk, SRST=rst, D=a, Q=q) #SRST_VALUE=0
                o: $and(A=q, B=b, Y=y)
            end)",
         R"(module top(in clk, rst, a, b, out y)
                g: $_NOT_(A=a, Y=n1)
                r: $_SDFF_PP1_(C=clk, D=n1, R=rst, Q=n2)
                o: $_ANDNOT_(A=b, B=n2, Y=y)
            end)");
    EXPECT_EQ(found("q"), "register ~n2");
}

TEST_F(CrossProbeTest, ANameThatIsContradictedIsNoMatch)
{
    load(R"(module top(in clk, rst, a, b, out y)
                g: $xor(A=a, B=b, Y=d)
                r: $sdff(CLK=clk, SRST=rst, D=d, Q=y) #SRST_VALUE=0
            end)",
         R"(module top(in clk, rst, a, b, out y)
                f: $_OR_(A=a, B=b, Y=d)
                g: $_XOR_(A=a, B=b, Y=n1)
                r: $_SDFF_PP0_(C=clk, D=n1, R=rst, Q=y)
                s: $_DFF_P_(C=clk, D=d, Q=n2)
            end)");
    EXPECT_EQ(found("d"), "structural n1");
    EXPECT_EQ(found("y"), "exact y");
}

TEST_F(CrossProbeTest, SharedRegistersAreMergedWithTheOneThatSurvived)
{
    load(R"(module top(in clk, rst, a, b, out y)
                r: $sdff(CLK=clk, SRST=rst, D=a, Q=q) #SRST_VALUE=0
                s: $sdff(CLK=clk, SRST=rst, D=a, Q=p) #SRST_VALUE=0
                g: $and(A=p, B=b, Y=d)
                o: $xor(A=q, B=d, Y=y)
            end)",
         R"(module top(in clk, rst, a, b, out y)
                r: $_SDFF_PP0_(C=clk, D=a, R=rst, Q=q)
                o: $_ANDNOT_(A=q, B=b, Y=y)
            end)");
    EXPECT_EQ(found("q"), "exact q");
    EXPECT_EQ(found("p"), "merged q");
    EXPECT_EQ(found("d"), "gone in-logic");
}

TEST_F(CrossProbeTest, LogicThatIsComputedInvertedIsSaidToBe)
{
    load(R"(module top(in a, b, c, out y)
                g: $and(A=a, B=b, Y=d)
                o: $xor(A=d, B=c, Y=y)
            end)",
         R"(module top(in a, b, c, out y)
                g: $_ANDNOT_(A=a, B=b, Y=n1)
                h: $_ANDNOT_(A=a, B=n1, Y=n2)
                i: $_NOT_(A=n2, Y=n3)
                o: KVR_LUT2(I0=n3, I1=c, O=y) #INIT=1001
            end)");
    EXPECT_EQ(found("d"), "structural n2 ~n3");
    EXPECT_EQ(foundBack("n3"), "structural ~d");
}

TEST_F(CrossProbeTest, WhatABlackBoxDrivesIsUnknownWhereTheOtherFormHasNone)
{
    load(R"(blackbox SENSOR(in I, out O) end
            module top(in a, b, out y)
                s: SENSOR(I=a, O=raw)
                o: $and(A=raw, B=b, Y=y)
            end)",
         R"(module top(in a, b, out y)
                o: $_AND_(A=a, B=b, Y=y)
            end)");
    EXPECT_EQ(found("raw"), "unknown");
}

TEST_F(CrossProbeTest, WhatHardlyEverChangesIsUnknownWithoutAName)
{
    std::string ports = "i0";
    std::string gates = "a0: $and(A=i0, B=b, Y=n0)\n";
    std::string mapped = "a0: $_AND_(A=i0, B=b, Y=m0)\n";
    for (int at = 1; at < 24; ++at) {
        const std::string own = std::to_string(at);
        const std::string before = std::to_string(at - 1);
        ports += ", i" + own;
        gates += "a" + own + ": $and(A=n" + before + ", B=i" + own + ", Y=n" + own + ")\n";
        mapped += "a" + own + ": $_AND_(A=m" + before + ", B=i" + own + ", Y=m" + own + ")\n";
    }
    const std::string head = "module top(in " + ports + ", b, c, out y)\n";
    load(head + gates + "o: $xor(A=n23, B=c, Y=y) end", head + mapped + "o: $_XOR_(A=m23, B=c, Y=y) end");
    EXPECT_EQ(found("n1"), "structural m1");
    EXPECT_EQ(found("n23"), "unknown");
}

TEST_F(CrossProbeTest, TwoSourcesAreNeededAndMustStay)
{
    elaborated((CELLS + "module top(in a, out y) n: $not(A=a, Y=y) end").c_str());
    EXPECT_THROW(CrossProbe{*database}, std::invalid_argument);
    postMap((CELLS + "module top(in a, out y) n: $_NOT_(A=a, Y=y) end").c_str());
    probe = std::make_unique<CrossProbe>(*database);
    EXPECT_EQ(found("y"), "exact y ~a");
    IVDBInstance *const root = database->getRoot(ELABORATED);
    EXPECT_THROW((void)probe->find(root, nullptr), std::invalid_argument);
    IVDBNet *const net = netOf(root, "y");
    ASSERT_TRUE(database->reset(POST_MAP));
    EXPECT_THROW((void)probe->find(root, net), std::logic_error);
}

} // namespace
} // namespace analysis_test
