#include "tests/unit/analysis/ProbeReportTest.h"

#include <netlistdb/IVDBNetBus.h>

namespace analysis_test {
namespace {

using namespace kvr::netlistdb::analysis;

/// Nets that lie in special places of a device, and both forms together.
class DeviceProbes : public ProbeReportTest {};

TEST_F(DeviceProbes, TheFabricHasNoWireBetweenAnIOCellAndThePackage)
{
    loadPostMap(R"(module top(in clk, pad_i, out pad_o)
                       c: KVR_IBUF(I=clk, O=ck)
                       i: KVR_IBUF(I=pad_i, O=n)
                       r: KVR_FF(C=ck, D=n, Q=q)
                       o: KVR_OBUF(I=q, O=pad_o)
                   end)");
    EXPECT_EQ(report("pad_i"), "no: pad-side! no-clock");
    EXPECT_EQ(details("pad_i"), "pad-side | the I/O cell i (KVR_IBUF) | n\n"
                                "no-clock | comes from an input of the design | \n");
    EXPECT_EQ(details("pad_o"), "pad-side | the I/O cell o (KVR_OBUF) | q\n");
    EXPECT_EQ(report("n"), "warning: no-clock");
    EXPECT_EQ(report("q"), "ok");
}

TEST_F(DeviceProbes, IOCellsBelowTheTopAreFoundThroughTheHierarchy)
{
    loadElaborated(R"(module pads(in outer, out inner)
                          i: KVR_IBUF(I=outer, O=inner)
                      end
                      module top(in clk, pin, out q)
                          p: pads(outer=pin, inner=n)
                          r: DFF(clk=clk, d=n, q=q)
                      end)");
    EXPECT_EQ(report("pin"), "no: pad-side! no-clock");
    EXPECT_EQ(report("outer", "p"), "no: pad-side! no-clock");
    EXPECT_EQ(report("inner", "p"), "warning: no-clock");
    EXPECT_EQ(report("n"), "warning: no-clock");
}

TEST_F(DeviceProbes, WiresBetweenHardBlocksAreNoOrdinaryOnes)
{
    loadPostMap(R"(module top(in clk, rx, out q)
                       p: PLL(CLKIN=clk, FB=fb, FBOUT=fb, CLKOUT=ck)
                       l: LINK(PIN=rx, DATA=d)
                       r: KVR_FF(C=ck, D=d, Q=q)
                   end)");
    EXPECT_EQ(report("rx"), "no: hard-block-pin! no-clock");
    EXPECT_EQ(details("rx"), "hard-block-pin | between the package and l (LINK) | \n"
                             "no-clock | comes from an input of the design | \n");
    EXPECT_EQ(report("fb"), "warning: hard-block-pin no-clock");
    EXPECT_EQ(report("d"), "warning: no-clock");
}

TEST_F(DeviceProbes, ABlackBoxOfWhichNothingIsKnownIsNoHardBlock)
{
    loadElaborated(R"(module top(in d, out q)
                          x: BOX(I=d, O=n)
                          y: BOX(I=n, O=q)
                      end)");
    EXPECT_EQ(report("d"), "warning: no-clock");
    EXPECT_EQ(report("n"), "warning: no-clock");
}

TEST_F(DeviceProbes, WithBothFormsWhatNoNetCarriesMayNotBeProbed)
{
    loadBoth(R"(module top(in clk, rst, a, b, out y)
                    r: $sdff(CLK=clk, SRST=rst, D=a, Q=q) #SRST_VALUE=0
                    s: $sdff(CLK=clk, SRST=rst, D=b, Q=p) #SRST_VALUE=0
                    g: $and(A=p, B=b, Y=d)
                    k: $sdff(CLK=clk, SRST=rst, D=fixed, Q=fixed) #SRST_VALUE=1
                    u: $xor(A=b, B=q, Y=unused)
                    m: $and(A=q, B=fixed, Y=x)
                    o: $xor(A=x, B=d, Y=y)
                end)",
             R"(module top(in clk, rst, a, b, out y)
                    r: $_SDFF_PP0_(C=clk, D=a, R=rst, Q=q)
                    s: $_SDFF_PP0_(C=clk, D=b, R=rst, Q=p)
                    l: KVR_LUT3(I0=q, I1=p, I2=b, O=y) #INIT=01101010
                end)");
    EXPECT_EQ(report("q"), "ok");
    ASSERT_TRUE(reportOf("q").bits[0].target);
    EXPECT_EQ(reportOf("q").bits[0].target->net->getName(), "q");
    EXPECT_EQ(reportOf("q").bits[0].match->grade, ProbeGrade::Exact);
    EXPECT_EQ(report("d"), "no: absorbed!");
    const ProbeFinding gone = reportOf("d").findings.front();
    EXPECT_NE(gone.evidence.find("(l)"), std::string::npos) << gone.evidence;
    EXPECT_EQ(gone.instead, "p");
    EXPECT_EQ(report("fixed"), "no: constant!");
    EXPECT_EQ(report("unused"), "no: unused!");
}

TEST_F(DeviceProbes, WithBothFormsTheNetBehindTheIOCellIsTheOneToSample)
{
    loadBoth(R"(module top(in clk, rst, a, out y)
                    r: $sdff(CLK=clk, SRST=rst, D=a, Q=y) #SRST_VALUE=0
                end)",
             R"(module top(in clk, rst, a, out y)
                    i: KVR_IBUF(I=a, O=n)
                    r: $_SDFF_PP0_(C=clk, D=n, R=rst, Q=q)
                    o: KVR_OBUF(I=q, O=y)
                end)");
    EXPECT_EQ(report("y"), "ok");
    ASSERT_TRUE(reportOf("y").bits[0].target);
    EXPECT_EQ(reportOf("y").bits[0].target->net->getName(), "q");
    EXPECT_EQ(report("a"), "warning: no-clock");
    EXPECT_EQ(reportOf("a").bits[0].target->net->getName(), "n");
}

TEST_F(DeviceProbes, WhatIsNotDecidedMayNotBeProbed)
{
    loadBoth(R"(module top(in clk, a, b, out y)
                    x: BOX(I=a, O=n)
                    g: $and(A=n, B=b, Y=y)
                end)",
             R"(module top(in clk, a, b, out y)
                    n: $_ANDNOT_(A=a, B=b, Y=y)
                end)");
    EXPECT_EQ(report("n").substr(0, 14), "no: unmatched!");
}

TEST_F(DeviceProbes, WhatTheLibraryRefusesInTheDeviceMayNotBeProbedEither)
{
    loadBoth(R"(module top(in clk, rst, a, out y)
                    r: $sdff(CLK=clk, SRST=rst, D=a, Q=q) #SRST_VALUE=0
                    n: $and(A=q, B=a, Y=y)
                end)",
             R"(module top(in clk, rst, a, out y)
                    net q protected
                    r: $_SDFF_PP0_(C=clk, D=a, R=rst, Q=q)
                    n: $_AND_(A=q, B=a, Y=y)
                end)");
    EXPECT_EQ(report("q"), "no: protected!");
    EXPECT_EQ(details("q"), "protected | in the device: q | \n");
}

TEST_F(DeviceProbes, TheMapsMustBeOfTheTwoForms)
{
    loadBoth("module top(in clk, d, out q) r: $sdff(CLK=clk, D=d, Q=q) end",
             "module top(in clk, d, out q) r: KVR_FF(C=clk, D=d, Q=q) end");
    EXPECT_THROW(ProbeReport(*deviceMap, *map, *probe), std::invalid_argument);
    EXPECT_THROW(ProbeReport(*map, *map, *probe), std::invalid_argument);
}

} // namespace
} // namespace analysis_test
