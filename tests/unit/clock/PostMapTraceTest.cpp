#include "ClockTest.h"

namespace clock_test {
namespace {

class PostMapTrace : public ClockTest {
  protected:
    std::string clockOf(const std::string &net) { return ClockTest::clockOf("", net, POST_MAP); }
    std::string clockIn(const std::string &path, const std::string &net)
    {
        return ClockTest::clockOf(path, net, POST_MAP);
    }
    Verific::Instance *copied(const char *instance) { return copyOf(POST_MAP)->GetInst(instance); }
};

TEST_F(PostMapTrace, OfAFlipFlopBehindAClockBufferAnswersTheInputOfTheBuffer)
{
    postMap(R"(
        module top(in clk, d, out q)
            buffer: KVR_GBUFCE(I=clk, O=gclk)
            ff: KVR_FF(C=gclk, D=d, Q=q)
        end)");
    IVDBInstance *const root = database->getRoot(POST_MAP);
    const IClockDomain *domain = database->findDrivingClockDomains(root, netOf(root, "q"), POST_MAP);
    ASSERT_NE(domain, nullptr);
    EXPECT_EQ(domain->getName(), "clk");
    EXPECT_EQ(domain->getInstance(), root);
    EXPECT_EQ(pairCache(), (NamesByClock{{"clk", {"q"}}}));
}

TEST_F(PostMapTrace, GoesThroughOneClockBufferOnly)
{
    postMap(R"(
        module top(in clk, d, out q)
            b1: KVR_GBUFCE(I=clk, O=g1)
            b2: KVR_GBUFCE(I=g1, O=g2)
            ff: KVR_FF(C=g2, D=d, Q=q)
        end)");
    EXPECT_EQ(clockOf("q"), "g1");
}

TEST_F(PostMapTrace, GoesThroughNoOtherCellOnTheClock)
{
    postMap(R"(
        module top(in clk, d, out q)
            b: KVR_LUT1(I0=clk, O=gated)
            ff: KVR_FF(C=gated, D=d, Q=q)
        end)");
    EXPECT_EQ(clockOf("q"), "gated");
}

TEST_F(PostMapTrace, TriesTheNextClockPinWhenTheBufferHasNoInputPort)
{
    postMap(R"(
        blackbox NO_I(in A, out O) end
        blackbox TWO(in C1 clock, C2 clock, D, out Q) end
        module top(in a, clk, d, out q)
            b: NO_I(A=a, O=g) @KVR_ATTRIBUTE_CELL_NAME=KVR_GBUFCE
            x: TWO(C1=g, C2=clk, D=d, Q=q) @KVR_ATTRIBUTE_CELL_NAME=KVR_MULT
        end)");
    EXPECT_EQ(clockOf("q"), "clk");
}

TEST_F(PostMapTrace, StopsAtASequentialCellWhoseOnlyBufferHasNoInputPort)
{
    postMap(R"(
        blackbox NO_I(in A, out O) end
        module top(in a, clk, out q)
            b: NO_I(A=a, O=g) @KVR_ATTRIBUTE_CELL_NAME=KVR_GBUFCE
            source: KVR_FF(C=clk, Q=d)
            ff: KVR_FF(C=g, D=d, Q=q)
        end)");
    EXPECT_EQ(clockOf("q"), "none");
    EXPECT_EQ(pairCache(), (NamesByClock{{"none", {"q"}}}));
}

TEST_F(PostMapTrace, AnswersNothingWhenTheInputOfTheBufferIsOpen)
{
    postMap(R"(
        blackbox TWO(in C1 clock, C2 clock, D, out Q) end
        module top(in ce, clk, d, out q)
            b: KVR_GBUFCE(CE=ce, O=g)
            x: TWO(C1=g, C2=clk, D=d, Q=q) @KVR_ATTRIBUTE_CELL_NAME=KVR_DSP
        end)");
    EXPECT_EQ(clockOf("q"), "none") << "the first pin qualifies, its clock has no net";
    EXPECT_EQ(pairCache(), (NamesByClock{{"none", {"q"}}}));
}

TEST_F(PostMapTrace, TakesTheFlipFlopMetFirstInTheOrderOfThePins)
{
    postMap(R"(
        module top(in c1, c2, d, out y)
            f1: KVR_FF(C=c1, D=d, Q=q1)
            f2: KVR_FF(C=c2, D=d, Q=q2)
            lut: KVR_LUT2(I1=q2, I0=q1, O=y)
        end)");
    EXPECT_EQ(clockOf("y"), "c2") << "I1 was connected first";
    EXPECT_EQ(pairCache(), (NamesByClock{{"c2", {"q2", "y"}}})) << "what was still waiting is not cached";
}

TEST_F(PostMapTrace, TakesTheNearerFlipFlopThoughAnotherPinStandsBeforeIt)
{
    postMap(R"(
        module top(in c1, c2, d, out y)
            f1: KVR_FF(C=c1, D=d, Q=q1)
            far: KVR_LUT1(I0=q1, O=n1)
            f2: KVR_FF(C=c2, D=d, Q=q2)
            lut: KVR_LUT2(I0=n1, I1=q2, O=y)
        end)");
    EXPECT_EQ(clockOf("y"), "c2");
    EXPECT_EQ(pairCache(), (NamesByClock{{"c2", {"n1", "q2", "y"}}}));
}

TEST_F(PostMapTrace, OfAPrimaryInputIsADeadEnd)
{
    postMap("module top(in a, out q) ff: KVR_FF(C=a, D=a, Q=q) end");
    EXPECT_EQ(clockOf("a"), "none");
    EXPECT_EQ(pairCache(), (NamesByClock{{"none", {"a"}}}));
}

TEST_F(PostMapTrace, CachesDeadEndsUnderNullAndTheRestUnderTheAnswer)
{
    postMap(R"(
        module top(in a, clk, d, out y)
            ff: KVR_FF(C=clk, D=d, Q=q)
            lut: KVR_LUT2(I0=a, I1=q, O=y)
        end)");
    EXPECT_EQ(clockOf("y"), "clk");
    EXPECT_EQ(pairCache(), (NamesByClock{{"none", {"a"}}, {"clk", {"q", "y"}}}));
}

TEST_F(PostMapTrace, CachesAWholeConeWithoutClockUnderNull)
{
    postMap(R"(
        module top(in a, b, out y)
            l1: KVR_LUT1(I0=a, O=n)
            l2: KVR_LUT2(I0=n, I1=b, O=y)
        end)");
    EXPECT_EQ(clockOf("y"), "none");
    EXPECT_EQ(pairCache(), (NamesByClock{{"none", {"a", "b", "n", "y"}}}));
}

TEST_F(PostMapTrace, EndsAtAPairKnownToReachNoClockWhateverElseWaits)
{
    postMap(R"(
        module top(in a, clk, d, out y)
            ff: KVR_FF(C=clk, D=d, Q=q)
            lut: KVR_LUT2(I0=a, I1=q, O=y)
        end)");
    EXPECT_EQ(clockOf("a"), "none");
    EXPECT_EQ(clockOf("y"), "none");
    EXPECT_EQ(pairCache(), (NamesByClock{{"none", {"a", "y"}}}));
    EXPECT_EQ(clockOf("q"), "clk");
}

TEST_F(PostMapTrace, EndsWhenADeadEndIsMetAgainInTheSameQuery)
{
    postMap(R"(
        module top(in a, clk, d, out y)
            ff: KVR_FF(C=clk, D=d, Q=q)
            lut: KVR_LUT3(I0=a, I1=a, I2=q, O=y)
        end)");
    EXPECT_EQ(clockOf("y"), "none");
    EXPECT_EQ(pairCache(), (NamesByClock{{"none", {"a", "y"}}}));
}

TEST_F(PostMapTrace, FindsASecondQueryOfAConeInTheCacheAtOnce)
{
    postMap(R"(
        module top(in clk, d, out y)
            ff: KVR_FF(C=clk, D=d, Q=q)
            l1: KVR_LUT1(I0=q, O=n)
            l2: KVR_LUT1(I0=n, O=y)
            l3: KVR_LUT2(I0=d, I1=n, O=z)
        end)");
    EXPECT_EQ(clockOf("y"), "clk");
    const NamesByClock cached{{"clk", {"n", "q", "y"}}};
    EXPECT_EQ(pairCache(), cached);
    delete copied("ff"); // from here on no trace would find the clock
    for (const char *net : {"y", "n", "q"}) {
        EXPECT_EQ(clockOf(net), "clk");
    }
    EXPECT_EQ(pairCache(), cached);
    EXPECT_EQ(clockOf("z"), "clk") << "it meets the cached n";
    EXPECT_EQ(pairCache(), (NamesByClock{{"none", {"d"}}, {"clk", {"n", "q", "y", "z"}}}));
}

TEST_F(PostMapTrace, TakesTheClockOfTheMemorySideNamedByTheFirstLetter)
{
    postMap(R"(
        blackbox RAM(in WCLK_R clock, RCLK_W clock, A, out W_Q_R, R_Q_W) end
        module top(in wclk, rclk, a, out w, r)
            ram: RAM(WCLK_R=wclk, RCLK_W=rclk, A=a, W_Q_R=w, R_Q_W=r) @KVR_ATTRIBUTE_CELL_NAME=KVR_RAM18
        end)");
    EXPECT_EQ(clockOf("w"), "wclk");
    EXPECT_EQ(clockOf("r"), "rclk");
}

TEST_F(PostMapTrace, TakesTheClockOfTheDualPortMemorySideNamedByTheLastLetter)
{
    postMap(R"(
        blackbox RAM(in ACLKB clock, BCLKA clock, out AQA, BQB) end
        module top(in clkb, clka, out qa, qb)
            ram: RAM(ACLKB=clkb, BCLKA=clka, AQA=qa, BQB=qb) @KVR_ATTRIBUTE_CELL_NAME=KVR_DPRAM9
        end)");
    EXPECT_EQ(clockOf("qa"), "clka");
    EXPECT_EQ(clockOf("qb"), "clkb");
}

TEST_F(PostMapTrace, StopsAtAMemoryOutputThatNoClockPinMatches)
{
    postMap(R"(
        blackbox RAM(in W_CLK clock, R_CLK clock, A, out X_DATA) end
        blackbox DPRAM(in CLK_A clock, A, out Q_B) end
        module top(in clk, d, out x, b, y, z)
            ff: KVR_FF(C=clk, D=d, Q=q)
            r1: RAM(W_CLK=clk, R_CLK=clk, A=q, X_DATA=x) @KVR_ATTRIBUTE_CELL_NAME=KVR_RAM
            r2: DPRAM(CLK_A=clk, A=q, Q_B=b) @KVR_ATTRIBUTE_CELL_NAME=KVR_DPRAM
            l1: KVR_LUT3(I0=x, I1=b, I2=q, O=y)
            l2: KVR_LUT2(I0=x, I1=b, O=z)
        end)");
    EXPECT_EQ(clockOf("y"), "clk") << "the memories are barriers, the query goes on with q";
    EXPECT_EQ(pairCache(), (NamesByClock{{"clk", {"b", "q", "x", "y"}}}));
    database->reset(POST_MAP);
    postMap(R"(
        module top2(in clk, d, out x, b, y, z)
            ff: KVR_FF(C=clk, D=d, Q=q)
            r1: RAM(W_CLK=clk, R_CLK=clk, A=q, X_DATA=x) @KVR_ATTRIBUTE_CELL_NAME=KVR_RAM
            r2: DPRAM(CLK_A=clk, A=q, Q_B=b) @KVR_ATTRIBUTE_CELL_NAME=KVR_DPRAM
            l2: KVR_LUT2(I0=x, I1=b, O=z)
        end)");
    EXPECT_EQ(clockOf("z"), "none") << "nothing is asked of what feeds a barrier";
}

TEST_F(PostMapTrace, TakesTheFirstConnectedClockPinOfOtherSequentialCells)
{
    postMap(R"(
        blackbox CELL(in C1 clock, C2 clock, C3 clock, D, out Q) end
        module top(in a, b, d, out q1, q2, q3)
            x1: CELL(D=d, C1=a, C2=b, Q=q1) @KVR_ATTRIBUTE_CELL_NAME=KVR_DSP48
            x2: CELL(C2=b, C1=a, Q=q2) @KVR_ATTRIBUTE_CELL_NAME=KVR_SRL16
            x3: CELL(D=d, C3=b, Q=q3) @KVR_ATTRIBUTE_CELL_NAME=KVR_IDDR
        end)");
    EXPECT_EQ(clockOf("q1"), "a");
    EXPECT_EQ(clockOf("q2"), "b");
    EXPECT_EQ(clockOf("q3"), "b");
}

TEST_F(PostMapTrace, StopsAtASequentialCellWithoutProperClockPin)
{
    postMap(R"(
        blackbox CELL(in C @KVR_ATTRIBUTE_PORT__IS_CLOCK=true, out CO clock, Q, in D) end
        module top(in clk, out q, co)
            ff: KVR_FF(C=clk, Q=d)
            x: CELL(C=clk, CO=co, Q=q, D=d) @KVR_ATTRIBUTE_CELL_NAME=KVR_FF
        end)");
    EXPECT_EQ(clockOf("q"), "none");
    EXPECT_EQ(pairCache(), (NamesByClock{{"none", {"q"}}}));
}

TEST_F(PostMapTrace, WantsNamesOnTheDrivingPinAndOnTheClockPin)
{
    postMap(R"(
        blackbox NO_CLOCK_NAME(in "" clock, C clock, out Q) end
        blackbox NO_OUTPUT_NAME(in C clock, out "") end
        module top(in a, b, c, out p, q)
            x: NO_CLOCK_NAME(""=a, C=b, Q=p) @KVR_ATTRIBUTE_CELL_NAME=KVR_FF
            y: NO_OUTPUT_NAME(C=c, ""=q) @KVR_ATTRIBUTE_CELL_NAME=KVR_FF
        end)");
    EXPECT_EQ(clockOf("p"), "b");
    EXPECT_EQ(clockOf("q"), "none");
}

TEST_F(PostMapTrace, TakesTheDrivingPinForTheMemorySideAndNotAnotherOutput)
{
    postMap(R"(
        blackbox RAM(in A_CLK clock, B_CLK clock, out A_Q, B_Q, C_Q) end
        module top(in a, b, out qa, qb, qc)
            ram: RAM(A_CLK=a, B_CLK=b, C_Q=qc, B_Q=qb, A_Q=qa) @KVR_ATTRIBUTE_CELL_NAME=KVR_RAM
        end)");
    EXPECT_EQ(clockOf("qa"), "a");
    EXPECT_EQ(clockOf("qb"), "b");
    EXPECT_EQ(clockOf("qc"), "none");
}

TEST_F(PostMapTrace, TakesTheFirstDriverOfANetThatHasSeveral)
{
    postMap(R"(
        module top(in a, b, d, out q)
            f1: KVR_FF(C=a, D=d, Q=q)
            f2: KVR_FF(C=b, D=d, Q=q)
        end)");
    EXPECT_EQ(clockOf("q"), "a");
}

TEST_F(PostMapTrace, PassesBlackBoxesAndCellsOfUnknownType)
{
    postMap(R"(
        blackbox BOX(in A, inout B, out Y, Z) end
        module top(in clk, d, out y, z)
            ff: KVR_FF(C=clk, D=d, Q=q)
            box: BOX(B=q, Y=y, Z=z)
            unknown: KVR_FF(C=d, D=z, Q=w) @KVR_ATTRIBUTE_CELL_NAME=KVR_FFX
        end)");
    EXPECT_EQ(clockOf("y"), "clk") << "through the inout pin";
    EXPECT_EQ(clockOf("w"), "clk") << "its clock pin leads to a dead end, its input through the box to the flip-flop";
    EXPECT_EQ(pairCache(), (NamesByClock{{"none", {"d"}}, {"clk", {"q", "w", "y", "z"}}}));
}

TEST_F(PostMapTrace, RunsThroughLoops)
{
    postMap(R"(
        module top(in clk, d, out y)
            ff: KVR_FF(C=clk, D=d, Q=q)
            l1: KVR_LUT2(I0=n2, I1=n3, O=n1)
            l2: KVR_LUT2(I0=n1, I1=n2, O=n2)
            l3: KVR_LUT2(I0=n1, I1=q, O=n3)
            a: KVR_LUT1(I0=b2, O=b1)
            b: KVR_LUT1(I0=b1, O=b2)
        end)");
    EXPECT_EQ(clockOf("n1"), "clk");
    EXPECT_EQ(clockOf("b1"), "none");
    EXPECT_EQ(pairCache(), (NamesByClock{{"none", {"b1", "b2"}}, {"clk", {"n1", "n2", "n3", "q"}}}));
}

TEST_F(PostMapTrace, FindsTheClockAmongManyPinsAsTheyAreAtThatMoment)
{
    // Two clocks end in A, so that the order of the pins decides, and one in B. Each query asks for another output.
    std::string ports;
    std::string outputs;
    for (int at = 0; at < 80; ++at) {
        const std::string number = std::to_string(at);
        ports += ", out Q" + number + "A, Q" + number + "B";
        outputs += ", Q" + number + "A=a" + number + ", Q" + number + "B=b" + number;
    }
    postMap(("blackbox WIDE(in D, CLKA clock, ECLKA clock, CLKB clock" + ports +
             ") end\n"
             "module top(in x, y, z, d)\n"
             "    f1: KVR_FF(C=x, D=d, Q=d1) f2: KVR_FF(C=y, D=d, Q=d2) f3: KVR_FF(C=z, D=d, Q=d3)\n"
             "    ram: WIDE(D=d" +
             outputs + ", CLKA=x, ECLKA=y, CLKB=z) @KVR_ATTRIBUTE_CELL_NAME=KVR_DPRAM\nend")
                .c_str());
    const Verific::Netlist *const top = copyOf(POST_MAP);
    Verific::Instance *const ram = top->GetInst("ram");
    const auto connect = [&](const char *port, const char *net) {
        ram->Disconnect(ram->View()->GetPort(port));
        if (net != nullptr) {
            ram->Connect(ram->View()->GetPort(port), top->GetNet(net));
        }
    };
    EXPECT_EQ(clockOf("a0"), "x");
    EXPECT_EQ(clockOf("b0"), "z");
    connect("CLKA", "x");
    EXPECT_EQ(clockOf("a1"), "y") << "CLKA is connected last now";
    connect("ECLKA", nullptr);
    EXPECT_EQ(clockOf("a2"), "x");
    connect("CLKB", "y");
    EXPECT_EQ(clockOf("b1"), "y");
    connect("CLKB", nullptr);
    EXPECT_EQ(clockOf("b2"), "none");
    connect("CLKA", nullptr);
    EXPECT_EQ(clockOf("a3"), "none");
    connect("ECLKA", "z");
    EXPECT_EQ(clockOf("a4"), "z");
}

constexpr const char *NOT_FLAT = R"(
    module sub(in a, ck, inout io, out y, w, z, s)
        lut: KVR_LUT1(I0=a, O=y)
        l2: KVR_LUT1(I0=io, O=w)
        ff: KVR_FF(C=ck, D=a, Q=s)
    end
    module top(in clk, d, p, out q)
        ff: KVR_FF(C=clk, D=d, Q=n)
        l: KVR_LUT1(I0=m, O=k)
        f2: KVR_FF(C=clk, D=d, Q=m)
        u1: sub(a=n, ck=clk, io=k, y=q, z=zz)
        u2: sub(a=p, ck=clk, io=n)
    end)";

TEST_F(PostMapTrace, LooksForTheClockUnderTheInstanceThatWasAskedFor)
{
    postMap(NOT_FLAT);
    // The flip-flop is found above, its domain stands under the root and not under u1.
    EXPECT_EQ(clockIn("u1", "y"), "none");
    EXPECT_EQ(pairCache(), (NamesByClock{{"none", {"u1/y", "u1/a", "n"}}}));
}

TEST_F(PostMapTrace, ClimbsOutOfASubInstanceToACachedAnswer)
{
    postMap(NOT_FLAT);
    EXPECT_EQ(clockOf("n"), "clk");
    EXPECT_EQ(clockIn("u1", "y"), "clk");
    EXPECT_EQ(clockIn("u2", "w"), "clk") << "through an inout port";
    EXPECT_EQ(clockIn("u2", "y"), "none") << "u2 hangs on a primary input";
    EXPECT_EQ(pairCache(),
              (NamesByClock{{"none", {"p", "u2/a", "u2/y"}}, {"clk", {"n", "u1/a", "u1/y", "u2/io", "u2/w"}}}));
}

TEST_F(PostMapTrace, SeesTheInputsOfAnUpperCellInTheInstanceThatWasAskedFor)
{
    postMap(NOT_FLAT);
    EXPECT_EQ(clockIn("u1", "w"), "none");
    EXPECT_EQ(pairCache(), (NamesByClock{{"none", {"u1/w", "u1/io", "k", "u1/m"}}}));
}

TEST_F(PostMapTrace, DoesNotClimbThroughOutputsNorFromNetsThatLeaveThroughNoPort)
{
    postMap(NOT_FLAT);
    EXPECT_EQ(clockIn("u1", "z"), "none");
    EXPECT_EQ(pairCache(), (NamesByClock{{"none", {"u1/z"}}}));
}

TEST_F(PostMapTrace, CachesAWholeConeUnderNullWhenTheClockIsNoDomain)
{
    postMap(NOT_FLAT);
    EXPECT_EQ(clockIn("u1", "s"), "none") << "the flip-flop below the top has no domain";
    EXPECT_EQ(pairCache(), (NamesByClock{{"none", {"u1/s"}}}));
}

TEST_F(PostMapTrace, ClimbsThroughEveryPortOfANetInTheOrderOfThePinsUpToANetWithoutItem)
{
    postMap(R"(
        module sub(in a, b, c) connect b = a connect c = a end
        module top(in d, c1, c2, c3)
            f1: KVR_FF(C=c1, D=d, Q=n1)
            f2: KVR_FF(C=c2, D=d, Q=n2)
            f3: KVR_FF(C=c3, D=d, Q=n3)
            u: sub(c=n3, a=n1, b=n2)
        end)");
    EXPECT_EQ(clockOf("n3"), "c3");
    EXPECT_EQ(clockOf("n2"), "c2");
    EXPECT_EQ(clockIn("u", "a"), "c3") << "c was connected first";
    EXPECT_EQ(pairCache(), (NamesByClock{{"c2", {"n2"}}, {"c3", {"n3", "u/a"}}}));
}

TEST_F(PostMapTrace, EndsAClimbAtANetWithoutItem)
{
    postMap(R"(
        module sub(in a, b, c) connect b = a connect c = a end
        module top(in d, c1, x)
            f1: KVR_FF(C=c1, D=d, Q=n1)
            u: sub(b=x, c=n1)
        end)");
    EXPECT_EQ(clockOf("n1"), "c1");
    auto *const late = new Verific::Net("late");
    copyOf(POST_MAP)->Add(late);
    // The pin of b goes behind that of c; then c goes behind b.
    Verific::Instance *const u = copied("u");
    u->Connect(u->View()->GetPort("b"), late);
    u->Connect(u->View()->GetPort("c"), copyOf(POST_MAP)->GetNet("x"));
    u->Connect(u->View()->GetPort("c"), copyOf(POST_MAP)->GetNet("n1"));
    EXPECT_EQ(clockIn("u", "a"), "none") << "nothing behind the pin on the unknown net counts";
}

TEST_F(PostMapTrace, GoesOnWithANetWithoutItemAsADeadEnd)
{
    postMap(R"(
        module top(in d, c1, x, out y)
            lut: KVR_LUT2(I0=x, O=y)
            f1: KVR_FF(C=c1, D=d, Q=n1)
        end)");
    auto *const late = new Verific::Net("late");
    copyOf(POST_MAP)->Add(late);
    Verific::Instance *const lut = copied("lut");
    lut->Connect(lut->View()->GetPort("I0"), late);
    lut->Connect(lut->View()->GetPort("I1"), copyOf(POST_MAP)->GetNet("n1"));
    EXPECT_EQ(clockOf("y"), "c1");
    EXPECT_EQ(pairCache(), (NamesByClock{{"none", {""}}, {"c1", {"n1", "y"}}}));
}

} // namespace
} // namespace clock_test
