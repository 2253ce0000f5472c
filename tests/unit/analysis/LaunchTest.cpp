#include "tests/unit/analysis/MapTest.h"

namespace analysis_test {
namespace {

class Launch : public MapTest {};

constexpr const char *LAUNCH_CELLS = R"(
    register DFF(in d, clk, out q) clock=clk end
    primitive $_AND_(in A, B, out Y) type=7 end
    primitive POWER(out Y) type=1 end
    primitive GROUND(out Y) type=2 end
    module two(in a, b, d, out qa, qb)
        ra: DFF(clk=a, d=d, q=qa)
        rb: DFF(clk=b, d=d, q=qb)
    end
)";

/// A top with registers on clocks a and b, whose outputs are qa and qb.
std::string text(const char *cells, const char *statements)
{
    return std::string(LAUNCH_CELLS) + cells +
           "\nmodule top(in a, b, d, s)\n  src: two(a=a, b=b, d=d, qa=qa, qb=qb)\n" + statements + "\nend";
}

TEST_F(Launch, AllClocksOfANetAreFoundTheNearestFirst)
{
    elaboratedMap(text("", R"(
        x: $_AND_(A=qa, B=qa, Y=y)
        z: $_AND_(A=y, B=qb, Y=w)
    )")
                      .c_str());
    EXPECT_EQ(launch("qa"), "a:0");
    EXPECT_EQ(launch("y"), "a:1");
    EXPECT_EQ(launch("w"), "b:1 a:2");
}

TEST_F(Launch, ClocksAtOneDistanceStandByName)
{
    elaboratedMap(text("", "x: $_AND_(A=qb, B=qa, Y=y)").c_str());
    EXPECT_EQ(launch("y"), "a:1 b:1");
}

TEST_F(Launch, BitwiseOperatorsAreFollowedBitByBit)
{
    elaboratedMap(text("operator $xor(in [1:0] A, [1:0] B, out [1:0] Y) end operator $mux(in [1:0] A, [1:0] B, S, out "
                       "[1:0] Y) end operator $concat(in A, B, out [1:0] Y) end operator $slice(in [1:0] A, out Y) end",
                       R"(
        z: GROUND(Y=zero)
        x: $xor(A={qa, qb}, B={zero, zero}, Y={x1, x0})
        m: $mux(A={qa, qb}, B={qa, qb}, S=zero, Y={m1, m0})
        c: $concat(A=qa, B=qb, Y={c1, c0})
        i: $slice(A={qa, qb}, Y=i0) #OFFSET=1
    )")
                      .c_str());
    EXPECT_EQ(launch("x0"), "b:1 | constant");
    EXPECT_EQ(launch("x1"), "a:1 | constant");
    EXPECT_EQ(launch("m0"), "b:1 | constant");
    EXPECT_EQ(launch("c0"), "a:1");
    EXPECT_EQ(launch("c1"), "b:1");
    EXPECT_EQ(launch("i0"), "a:1");
}

TEST_F(Launch, ArithmeticIsFollowedAsAWhole)
{
    elaboratedMap(text("operator $add(in [1:0] A, out [1:0] Y) end", "x: $add(A={qa, qb}, Y={y1, y0})").c_str());
    EXPECT_EQ(launch("y0"), "a:1 b:1");
    EXPECT_EQ(launch("y1"), "a:1 b:1");
}

TEST_F(Launch, AShiftIsWiringWhenItsAmountIsConstantAndAWholeOtherwise)
{
    elaboratedMap(
        text("operator $shl(in [1:0] A, B, out [1:0] Y) end operator $shr(in [1:0] A, B, out [1:0] Y) end", R"(
        p: POWER(Y=one)
        l: $shl(A={qa, qb}, B=one, Y={l1, l0})
        r: $shr(A={qa, qb}, B=one, Y={r1, r0})
        v: $shl(A={qa, qb}, B=s, Y={v1, v0})
    )")
            .c_str());
    EXPECT_EQ(launch("l1"), "b:1");
    EXPECT_EQ(launch("l0"), "| constant");
    EXPECT_EQ(launch("r0"), "a:1");
    EXPECT_EQ(launch("r1"), "| constant");
    EXPECT_EQ(launch("v0"), "a:1 b:1 | port");
}

TEST_F(Launch, AnOperandIsExtendedWithItsSignOnlyWhenAllOperandsAreSigned)
{
    elaboratedMap(text("operator $pos(in A, out [1:0] Y) end operator $and(in A, [1:0] B, out [1:0] Y) end", R"(
        s: $pos(A=qa, Y={s1, s0}) #A_SIGNED=1
        u: $pos(A=qa, Y={u1, u0}) #A_SIGNED=0
        x: $and(A=qa, B={qb, qb}, Y={x1, x0}) #A_SIGNED=1 #B_SIGNED=0
        y: $and(A=qa, B={qb, qb}, Y={y1, y0}) #A_SIGNED=1 #B_SIGNED=1
    )")
                      .c_str());
    EXPECT_EQ(launch("s1"), "a:1");
    EXPECT_EQ(launch("u1"), "| constant");
    EXPECT_EQ(launch("x1"), "b:1");
    EXPECT_EQ(launch("y1"), "a:1 b:1");
}

TEST_F(Launch, EveryOtherOriginIsNamed)
{
    elaboratedMap(text("blackbox BOX(in A, out Y) end operator $dlatch(in D, EN, out Q) end", R"(
        p: POWER(Y=one)
        k: BOX(A=qa, Y=box)
        l: $dlatch(D=qa, EN=qb, Q=held)
        x: $_AND_(A=nothing, B=qa, Y=half)
        y: $_AND_(B=qa, Y=open)
        o: $_AND_(A=loop, B=qa, Y=loop)
    )")
                      .c_str());
    EXPECT_EQ(launch("d"), "| port");
    EXPECT_EQ(launch("one"), "| constant");
    EXPECT_EQ(launch("box"), "| box");
    EXPECT_EQ(launch("held"), "a:1 b:1 | latch");
    EXPECT_EQ(launch("nothing"), "| undriven");
    EXPECT_EQ(launch("half"), "a:1 | undriven");
    EXPECT_EQ(launch("open"), "a:1 | undriven");
    EXPECT_EQ(launch("loop"), "a:1 | loop");
}

TEST_F(Launch, BothDriversOfANetCount)
{
    elaboratedMap(text("", "x: DFF(clk=a, d=d, q=y)\n z: DFF(clk=b, d=d, q=y)").c_str());
    EXPECT_EQ(launch("y"), "a:0 b:0");
}

TEST_F(Launch, AClockThatGoesIntoLogicReachesTheNetItself)
{
    elaboratedMap(text("", "x: $_AND_(A=a, B=qb, Y=y)").c_str());
    EXPECT_EQ(launch("a"), "| a:0 | port");
    EXPECT_EQ(launch("y"), "b:1 | a:1 | port");
}

TEST_F(Launch, AsynchronousSetAndResetDoNotPassThroughARegisterButAnAsynchronousLoadDoes)
{
    elaboratedMap(
        text("operator $adff(in CLK, ARST, D, out Q) end operator $aldff(in CLK, ALOAD, AD, D, out Q) end", R"(
        x: $adff(CLK=a, ARST=qb, D=d, Q=y)
        z: $aldff(CLK=a, ALOAD=qb, AD=qb, D=d, Q=w)
    )")
            .c_str());
    EXPECT_EQ(launch("y"), "a:0");
    EXPECT_EQ(launch("w"), "a:0 b:1 | latch");
}

TEST_F(Launch, AMemoryReadWithoutAClockShowsWhatItsWriteClocksWriteAndItsAddress)
{
    elaboratedMap(text("operator $mem_v2(in [1:0] RD_CLK, [1:0] RD_EN, [1:0] RD_ADDR, WR_CLK, WR_EN, WR_ADDR, WR_DATA, "
                       "out [1:0] RD_DATA) end",
                       R"(
        p: POWER(Y=one)
        m: $mem_v2(RD_CLK={a, a}, RD_EN={one, one}, RD_ADDR={qa, qa}, WR_CLK=b, WR_EN=qb, WR_ADDR=d, WR_DATA=d,
                   RD_DATA={free, clocked}) #RD_PORTS=2 #WR_PORTS=1 #RD_CLK_ENABLE=01 #WR_CLK_ENABLE=1
    )")
                      .c_str());
    EXPECT_EQ(launch("clocked"), "a:0");
    EXPECT_EQ(launch("free"), "b:0 a:1 | constant");
}

TEST_F(Launch, ReadPortsThatAreCellsOfTheirOwnShowWhatTheWritePortsOfTheirMemoryWrite)
{
    elaboratedMap(
        text("operator $memrd(in CLK, EN, ADDR, out DATA) end operator $memwr(in CLK, EN, ADDR, DATA) end", R"(
        w: $memwr(CLK=a, EN=d, ADDR=d, DATA=qb) #MEMID=mem #CLK_ENABLE=1
        o: $memwr(CLK=b, EN=d, ADDR=d, DATA=qb) #MEMID=other #CLK_ENABLE=1
        r: $memrd(ADDR=qb, DATA=free) #MEMID=mem #CLK_ENABLE=0
        c: $memrd(CLK=b, EN=d, ADDR=qa, DATA=clocked) #MEMID=mem #CLK_ENABLE=1
    )")
            .c_str());
    EXPECT_EQ(launch("free"), "a:0 b:1 | undriven");
    EXPECT_EQ(launch("clocked"), "b:0");
    EXPECT_EQ(capture("qb"), "a:data b:data");
    const auto proof = map->why(instanceOf(""), netIn("", "free"));
    ASSERT_EQ(proof.clocks.size(), 2U);
    EXPECT_EQ(proof.clocks[0].data.back().cell, "r");
    EXPECT_EQ(proof.clocks[0].clockToRoot.back().netName, "a");
}

TEST_F(Launch, EachSideOfADeviceMemoryHasItsOwnClock)
{
    postMapMap(R"(
        module top(in a, b, en, [8:0] wa, [17:0] wd, [8:0] ra, [3:0] da, [3:0] dd, [3:0] dr)
            bus [17:0] q
            bus [3:0] p
            m: KVR_RAM512X18(W_CLK=a, W_EN=en, W_ADDR=wa, W_DATA=wd, R_CLK=b, R_EN=en, R_ADDR=ra, R_DATA=q)
            n: KVR_RAMD16X4(W_CLK=a, W_EN=en, W_ADDR=da, W_DATA=dd, R_ADDR=dr, R_DATA=p)
            s: KVR_SRL16(C=a, D=en, E=en, A={one, one, one, one}, Q=r)
            v: KVR_FF(C=b, D=en, Q=one)
        end)");
    EXPECT_EQ(launch("q[3]"), "b:0");
    EXPECT_EQ(launch("p[0]"), "a:0 | port");
    EXPECT_EQ(launch("r"), "a:0 b:1");
    EXPECT_EQ(capture("wa[0]"), "a:data");
    EXPECT_EQ(capture("ra[0]"), "b:data");
    EXPECT_EQ(capture("da[0]"), "a:data");
}

TEST_F(Launch, ModulesAreFollowedThroughAndSetsBindToTheInstance)
{
    elaboratedMap(text(R"(
        module gate(in x, y, out z, w)
            g: $_AND_(A=x, B=y, Y=z)
            h: $_AND_(A=z, B=y, Y=w)
        end)",
                       R"(
        u: gate(x=qa, y=qb, z=uz, w=uw)
        v: gate(x=qa, y=uz, z=vz, w=vw)
        o: gate(x=qa, z=oz, w=ow)
    )")
                      .c_str());
    EXPECT_EQ(launch("uw"), "b:1 a:2");
    EXPECT_EQ(launch("vw"), "a:2 b:2");
    EXPECT_EQ(launch("z", "v"), "a:1 b:2");
    EXPECT_EQ(launch("y", "v"), "a:1 b:1");
    EXPECT_EQ(launch("oz"), "a:1 | undriven");
    EXPECT_EQ(launch("y", "o"), "| undriven");
}

TEST_F(Launch, ALoopThroughTwoInstancesIsOne)
{
    elaboratedMap(text("module pass(in x, out z)\n g: $_AND_(A=x, B=x, Y=z)\n end", R"(
        u: pass(x=ring, z=half)
        v: pass(x=half, z=ring)
        k: pass(x=ring, z=tail)
    )")
                      .c_str());
    EXPECT_EQ(launch("ring"), "| loop");
    EXPECT_EQ(launch("x", "u"), "| loop");
    EXPECT_EQ(launch("tail"), "| loop");
}

TEST_F(Launch, HundredsOfThousandsOfCellsInARowAreNoDepthForTheStack)
{
    auto *const cell = new Verific::Cell("long");
    testsupport::netlistFromText(
        "primitive $_AND_(in A, B, out Y) type=7 end register DFF(in d, clk, out q) clock=clk end");
    auto *const library = new Verific::Library("long");
    Verific::Libset::Global()->Add(library);
    library->Add(cell);
    auto *const top = new Verific::Netlist("view");
    cell->Add(top);
    Verific::Netlist *const gate = testsupport::netlistOfCell("$_AND_");
    Verific::Netlist *const flipFlop = testsupport::netlistOfCell("DFF");
    auto *const clock = new Verific::Net("clk");
    top->Add(clock);
    auto *net = new Verific::Net("n0");
    top->Add(net);
    auto *const first = new Verific::Instance("r", flipFlop);
    top->Add(first);
    first->Connect(flipFlop->GetPort("clk"), clock);
    first->Connect(flipFlop->GetPort("q"), net);
    constexpr unsigned LENGTH = 300000;
    for (unsigned at = 1; at <= LENGTH; ++at) {
        auto *const inst = new Verific::Instance(nullptr, gate);
        top->Add(inst);
        auto *const next = new Verific::Net(at == LENGTH ? "end" : nullptr);
        top->Add(next);
        inst->Connect(gate->GetPort("A"), net);
        inst->Connect(gate->GetPort("B"), net);
        inst->Connect(gate->GetPort("Y"), next);
        net = next;
    }
    database->parseElaboratedNetlist(top);
    map = std::make_unique<ClockMap>(*database, ELABORATED);
    EXPECT_EQ(launch("end"), "clk:" + std::to_string(LENGTH));
}

} // namespace
} // namespace analysis_test
