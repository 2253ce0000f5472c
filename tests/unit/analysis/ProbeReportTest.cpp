#include "tests/unit/analysis/ProbeReportTest.h"

#include <netlistdb/IVDBNetBus.h>

namespace analysis_test {
namespace {

using namespace kvr::netlistdb::analysis;

TEST_F(ProbeReportTest, ARegisterThatIsReadMayBeProbed)
{
    loadElaborated(R"(module top(in clk, d, out q)
                          a: DFF(clk=clk, d=d, q=n)
                          b: DFF(clk=clk, d=n, q=q)
                      end)");
    EXPECT_EQ(report("n"), "ok");
    const SignalReport found = reportOf("n");
    ASSERT_EQ(found.bits.size(), 1U);
    EXPECT_TRUE(found.bits[0].mayBeProbed);
    EXPECT_EQ(found.bits[0].clock, map->find("clk"));
    EXPECT_EQ(found.bits[0].edges, EDGE_RISE);
    EXPECT_EQ(found.probeable(), 1U);
}

TEST_F(ProbeReportTest, WhatIsProtectedMayNotBeProbedAndNothingElseIsSaid)
{
    loadElaborated(R"(module top(in clk, d, out q)
                          net n protected
                          bus [1:0] pair protected
                          a: DFF(clk=clk, d=d, q=n)
                          b: DFF(clk=clk, d=n, q=q)
                      end)");
    EXPECT_EQ(report("n"), "no: protected!");
    EXPECT_EQ(report("pair").substr(0, 14), "no: protected!");
}

TEST_F(ProbeReportTest, ABusWithAProtectedBitMayBeProbedInPart)
{
    loadElaborated(R"(module top(in clk, d, out q, p)
                          net s[0] protected
                          bus [1:0] s = {s[1], s[0]}
                          a: DFF(clk=clk, d=d, q=s[1])
                          b: DFF(clk=clk, d=d, q=s[0])
                          c: $_AND_(A=s[0], B=s[1], Y=q)
                      end)");
    EXPECT_EQ(report("s"), "partly: protected![1]");
    EXPECT_EQ(reportOf("s").probeable(), 1U);
}

TEST_F(ProbeReportTest, AMemoryAsAWholeIsExcluded)
{
    loadElaborated(R"(module top(in clk, d, out q)
                          ram store 16
                          a: DFF(clk=clk, d=d, q=q)
                      end)");
    EXPECT_EQ(report("store"), "no: excluded-memory!");
}

TEST_F(ProbeReportTest, AConstantMayNotBeProbedWhereverItComesFrom)
{
    loadElaborated(R"(module top(in clk, d, out q)
                          p: POWER(Y=one)
                          n: $_NOT_(A=one, Y=zero)
                          g: $_AND_(A=one, B=zero, Y=still)
                          a: $_AND_(A=d, B=still, Y=m)
                          b: DFF(clk=clk, d=m, q=q)
                      end)");
    EXPECT_EQ(report("one"), "no: constant!");
    EXPECT_EQ(report("zero"), "no: constant!");
    EXPECT_EQ(report("still"), "no: constant!");
    EXPECT_EQ(details("still"), "constant | made from constants alone | \n");
    EXPECT_EQ(textOf(reports->of(instanceOf(""), {nullptr, netIn("", "q")}, nullptr)), "partly: constant![0]");
}

TEST_F(ProbeReportTest, WhatNothingDrivesMayNotBeProbed)
{
    loadElaborated(R"(module top(in clk, d, out q)
                          n: $_NOT_(A=open, Y=p)
                          g: $_AND_(A=p, B=open, Y=m)
                          b: DFF(clk=clk, d=m, q=q)
                      end)");
    EXPECT_EQ(report("open"), "no: undriven!");
    EXPECT_EQ(details("p"), "undriven | begins at open | \n");
    EXPECT_EQ(details("m"), "undriven | all that it is made from is undriven or constant | \n");
}

TEST_F(ProbeReportTest, AClockMayNotBeProbedUnlessARegisterMakesIt)
{
    loadElaborated(R"(module top(in clk, en, d, out q, p, r)
                          b: $_NOT_(A=clk, Y=clk_n)
                          e: DFF(clk=clk, d=en, q=on)
                          g: $_AND_(A=clk, B=on, Y=gated)
                          h: DFF(clk=clk, d=d, q=half)
                          a: DFF(clk=clk_n, d=d, q=q)
                          c: DFF(clk=gated, d=d, q=p)
                          f: DFF(clk=half, d=d, q=r)
                      end)");
    EXPECT_EQ(report("clk"), "no: clock-net!");
    EXPECT_EQ(details("clk_n"), "clock-net | it is clock clk, inverted | \n");
    EXPECT_EQ(report("gated"), "no: clock-net!");
    EXPECT_EQ(report("half"), "warning: clock-net");
    EXPECT_EQ(report("on"), "ok");
}

TEST_F(ProbeReportTest, WhatNothingDependsOnIsAWarning)
{
    loadElaborated(R"(module top(in clk, d, out q)
                          a: DFF(clk=clk, d=d, q=n)
                          g: $_NOT_(A=n, Y=idle)
                          b: DFF(clk=clk, d=n, q=q)
                      end)");
    EXPECT_EQ(report("idle"), "warning: unused");
    EXPECT_EQ(report("q"), "ok");
}

TEST_F(ProbeReportTest, SeveralClocksAreAWarningThatNamesThem)
{
    loadElaborated(R"(module top(in ck_a, ck_b, d, out q)
                          a: DFF(clk=ck_a, d=d, q=m)
                          b: DFF(clk=ck_b, d=d, q=n)
                          h: DFF(clk=ck_a, d=d, q=half)
                          c: DFF(clk=half, d=d, q=o)
                          g: $_AND_(A=m, B=n, Y=q)
                          k: $_AND_(A=m, B=o, Y=r)
                          l: DFF(clk=ck_a, d=r, q=s)
                          x: BOX(I=s)
                      end)");
    EXPECT_EQ(report("q"), "warning: several-clocks");
    EXPECT_EQ(details("q"), "several-clocks | ck_a, ck_b | \n");
    EXPECT_EQ(details("r"), "several-clocks | ck_a, half, in step | \n");
}

TEST_F(ProbeReportTest, WhatNoClockReachesIsAWarningThatSaysWhereItComesFrom)
{
    loadElaborated(R"(module top(in clk, d, out q)
                          x: BOX(O=o)
                          g: $_AND_(A=d, B=o, Y=n)
                          a: DFF(clk=clk, d=n, q=q)
                      end)");
    EXPECT_EQ(report("d"), "warning: no-clock");
    EXPECT_EQ(details("n"), "no-clock | comes from an input of the design, a black box | \n");
    EXPECT_EQ(reportOf("n").bits[0].clock, std::nullopt);
}

TEST_F(ProbeReportTest, UnrelatedClocksInOneBusAreAWarningAboutTheFewerBits)
{
    loadElaborated(R"(module top(in ck_a, ck_b, d, out [2:0] s, [1:0] t)
                          a: DFF(clk=ck_a, d=d, q=s[2])
                          b: DFF(clk=ck_a, d=d, q=s[1])
                          c: DFF(clk=ck_b, d=d, q=s[0])
                          h: DFF(clk=ck_a, d=d, q=half)
                          e: DFF(clk=ck_a, d=d, q=t[1])
                          f: DFF(clk=half, d=d, q=t[0])
                      end)");
    EXPECT_EQ(report("s"), "warning: unrelated-clocks[2]");
    EXPECT_EQ(details("s"), "unrelated-clocks | ck_b here, ck_a for most bits | \n");
    EXPECT_EQ(report("t"), "ok") << "one clock is made from the other";
}

TEST_F(ProbeReportTest, TheInsideOfABlackBoxIsNoNetToProbe)
{
    loadElaborated(R"(module closed(in i, out o) blackbox
                      end
                      module sub(in a, out b)
                          x: closed(i=a, o=b)
                      end
                      module top(in d, out q)
                          u: sub(a=d, b=q)
                      end)");
    EXPECT_EQ(report("i", "u/x"), "no: hard-block-pin!");
    EXPECT_EQ(details("i", "u/x"), "hard-block-pin | i of u/x (closed), whose inside is not known | u/a\n");
}

TEST_F(ProbeReportTest, TheEdgeIsThatOfTheNearestRegisterWhereTheClockBegins)
{
    loadElaborated(R"(module top(in clk, d, out q, p, r)
                          i: $_NOT_(A=clk, Y=clk_n)
                          a: DFF(clk=clk, d=d, q=q)
                          b: DFF(clk=clk_n, d=d, q=p)
                          c: $_DFF_N_(C=clk_n, D=d, Q=r)
                      end)");
    EXPECT_EQ(reportOf("q").bits[0].edges, EDGE_RISE);
    EXPECT_EQ(reportOf("p").bits[0].edges, EDGE_FALL);
    EXPECT_EQ(reportOf("r").bits[0].edges, EDGE_RISE);
}

TEST_F(ProbeReportTest, OneGroupHoldsAllBitsOfOneClock)
{
    loadElaborated(R"(module top(in ck_a, ck_b, d, out [2:0] s, out q)
                          i: $_NOT_(A=ck_a, Y=n)
                          a: DFF(clk=ck_a, d=d, q=s[2])
                          b: DFF(clk=n, d=d, q=s[1])
                          c: DFF(clk=ck_b, d=d, q=s[0])
                          e: DFF(clk=ck_b, d=d, q=q)
                      end)");
    ProbeGroups groups;
    for (const char *name : {"s", "q", "d", "ck_a"}) {
        groups.add(reportOf(name));
    }
    ASSERT_EQ(groups.all().size(), 3U);
    const ProbeGroup &a = groups.all()[0];
    EXPECT_EQ(a.clock, map->find("ck_a"));
    EXPECT_EQ(a.edges, EDGE_RISE | EDGE_FALL);
    EXPECT_EQ(a.signals, 1U);
    EXPECT_EQ(a.bits, 2U);
    EXPECT_EQ(groups.all()[1].clock, map->find("ck_b"));
    EXPECT_EQ(groups.all()[1].signals, 2U);
    EXPECT_EQ(groups.all()[1].bits, 2U);
    EXPECT_EQ(groups.all()[2].clock, std::nullopt) << "an input; the clock itself is in no group";
    EXPECT_EQ(groups.all()[2].bits, 1U);
}

TEST_F(ProbeReportTest, AGroupCountsAWireOnceWhateverNamesItHas)
{
    loadElaborated(R"(module sub(in clk, a, out b)
                          r: DFF(clk=clk, d=a, q=b)
                      end
                      module top(in clk, d, out q)
                          a: DFF(clk=clk, d=d, q=n)
                          i: $_NOT_(A=n, Y=m)
                          u: sub(clk=clk, a=m, b=q)
                      end)");
    ProbeGroups groups;
    groups.add(reportOf("n"));
    groups.add(reportOf("m"));
    groups.add(reportOf("a", "u"));
    groups.add(reportOf("b", "u"));
    groups.add(reportOf("q"));
    ASSERT_EQ(groups.all().size(), 1U);
    EXPECT_EQ(groups.all()[0].bits, 5U);
    EXPECT_EQ(groups.all()[0].wires, 2U);
}

TEST_F(ProbeReportTest, EveryReasonAndVerdictHasItsName)
{
    std::string names;
    for (std::size_t reason = 0; reason < PROBE_REASONS; ++reason) {
        names.append(nameOf(static_cast<ProbeReason>(reason))).append(" ");
        EXPECT_NE(std::string(sentenceOf(static_cast<ProbeReason>(reason))), "");
    }
    EXPECT_EQ(names, "protected excluded-memory constant undriven pad-side hard-block-pin absorbed unmatched clock-net "
                     "unused several-clocks no-clock unrelated-clocks ");
    EXPECT_STREQ(nameOf(ProbeVerdict::Ok), "ok");
    EXPECT_STREQ(nameOf(ProbeVerdict::Warning), "warning");
    EXPECT_STREQ(nameOf(ProbeVerdict::Partly), "partly");
    EXPECT_STREQ(nameOf(ProbeVerdict::No), "no");
}

TEST_F(ProbeReportTest, ASourceThatIsGoneIsRefused)
{
    loadElaborated("module top(in clk, d, out q) a: DFF(clk=clk, d=d, q=q) end");
    IVDBInstance *const root = instanceOf("");
    IVDBNet *const net = netIn("", "q");
    ASSERT_TRUE(database->reset(ELABORATED));
    EXPECT_THROW((void)reports->of(root, net), std::logic_error);
    EXPECT_THROW(ProbeReport{*map}, std::logic_error);
}

} // namespace
} // namespace analysis_test
