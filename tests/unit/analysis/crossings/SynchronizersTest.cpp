#include "tests/unit/analysis/crossings/CrossingsTest.h"

using namespace kvr::netlistdb::analysis;

namespace crossings_test {
namespace {

using SynchronizersTest = CrossingsTest;

TEST_F(SynchronizersTest, TwoFlipFlopsWithAttributeAreSafe)
{
    elaborated(R"(module top(in clk_a, clk_b, d, out q)
        net first @async_reg=TRUE
        net second @ASYNC_REG=1
        a: $_DFF_P_(C=clk_a, D=d, Q=x)
        b1: $_DFF_P_(C=clk_b, D=x, Q=first)
        b2: $_DFF_P_(C=clk_b, D=first, Q=second)
        b3: $_DFFE_PP_(C=clk_b, D=d, E=second, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b x>first.D synchronized-bit"});
    EXPECT_EQ(crossingTo("first").severity(), Severity::Safe);
    EXPECT_EQ(crossingTo("first").stages, 2U);
    EXPECT_TRUE(crossingTo("first").isKept);
}

TEST_F(SynchronizersTest, TheAttributeMayStandOnTheCell)
{
    elaborated(R"(module top(in clk_a, clk_b, d, out q)
        a: $_DFF_P_(C=clk_a, D=d, Q=x)
        b1: $_DFF_P_(C=clk_b, D=x, Q=first) @keep=1
        b2: $_DFF_P_(C=clk_b, D=first, Q=q) @dont_touch=yes
    end)");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b x>first.D synchronized-bit"});
}

TEST_F(SynchronizersTest, WithoutAttributeOnBothFlipFlopsNothingKeepsThem)
{
    for (const char *attributes : {"", "@keep=1", "@keep=0", "@keep=false"}) {
        SCOPED_TRACE(attributes);
        elaborated(std::string(R"(module top(in clk_a, clk_b, d, out q)
            net q @keep=0
            net first )") +
                   attributes + R"(
            a: $_DFF_P_(C=clk_a, D=d, Q=x)
            b1: $_DFF_P_(C=clk_b, D=x, Q=first)
            b2: $_DFF_P_(C=clk_b, D=first, Q=q)
        end)");
        EXPECT_EQ(lines(), Lines{"clk_a>clk_b x>first.D synchronized-bit-unkept"});
        EXPECT_EQ(crossingTo("first").severity(), Severity::Warning);
        database.reset(source);
    }
}

TEST_F(SynchronizersTest, TheFirstFlipFlopFeedsNothingElse)
{
    for (const char *other : {"o: $_AND_(A=first, B=d, Y=p)", "o: $_DFF_P_(C=clk_b, D=first, Q=p)"}) {
        SCOPED_TRACE(other);
        elaborated(std::string(R"(module top(in clk_a, clk_b, d, out p, q)
            a: $_DFF_P_(C=clk_a, D=d, Q=x)
            b1: $_DFF_P_(C=clk_b, D=x, Q=first)
            b2: $_DFF_P_(C=clk_b, D=first, Q=q)
            )") + other +
                   " end");
        EXPECT_EQ(lines(), Lines{"clk_a>clk_b x>first.D unsynchronized-bit"});
        database.reset(source);
    }
    elaborated(R"(module top(in clk_a, clk_b, d, out first, q)
        a: $_DFF_P_(C=clk_a, D=d, Q=x)
        b1: $_DFF_P_(C=clk_b, D=x, Q=first)
        b2: $_DFF_P_(C=clk_b, D=first, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b x>first.D unsynchronized-bit"}) << "a port";
}

TEST_F(SynchronizersTest, BothFlipFlopsAreOnTheTargetClock)
{
    elaborated(R"(module top(in clk_a, clk_b, clk_c, d, out q)
        a: $_DFF_P_(C=clk_a, D=d, Q=x)
        b: $_DFF_P_(C=clk_b, D=x, Q=first)
        c: $_DFF_P_(C=clk_c, D=first, Q=q)
    end)");
    EXPECT_EQ(lines(), (Lines{"clk_a>clk_b x>first.D unsynchronized-bit", "clk_b>clk_c first>q.D unsynchronized-bit"}));
}

TEST_F(SynchronizersTest, AnInverterBetweenIsNoLogic)
{
    elaborated(R"(module top(in clk_a, clk_b, d, out q)
        a: $_DFF_P_(C=clk_a, D=d, Q=x)
        n1: $_NOT_(A=x, Y=y)
        b1: $_DFF_P_(C=clk_b, D=y, Q=first)
        n2: $_NOT_(A=first, Y=z)
        b2: $_DFF_P_(C=clk_b, D=z, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b x>first.D synchronized-bit-unkept"});
    EXPECT_FALSE(crossingTo("first").hasLogic);
}

TEST_F(SynchronizersTest, AllStagesAreCounted)
{
    elaborated(R"(module top(in clk_a, clk_b, d, out q)
        a: $_DFF_P_(C=clk_a, D=d, Q=x)
        b1: $_DFF_P_(C=clk_b, D=x, Q=first)
        b2: $_DFF_P_(C=clk_b, D=first, Q=second)
        b3: $_DFF_P_(C=clk_b, D=second, Q=q)
    end)");
    EXPECT_EQ(crossingTo("first").stages, 3U);
}

TEST_F(SynchronizersTest, ARingOfFlipFlopsIsAnEndlessChain)
{
    elaborated(R"(module top(in clk_a, clk_b, d)
        a: $_DFF_P_(C=clk_a, D=d, Q=x)
        m: $_MUX_(A=x, B=x, S=d, Y=y)
        b1: $_DFF_P_(C=clk_b, D=y, Q=first)
        b2: $_DFF_P_(C=clk_b, D=first, Q=second)
        b3: $_DFF_P_(C=clk_b, D=second, Q=y)
    end)");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b x>first.D logic-before-synchronizer"});
}

TEST_F(SynchronizersTest, LogicInFrontIsUnsafe)
{
    elaborated(R"(module top(in clk_a, clk_b, d, e, out q)
        a: $_DFF_P_(C=clk_a, D=d, Q=x)
        g: $_AND_(A=x, B=e, Y=y)
        b1: $_DFF_P_(C=clk_b, D=y, Q=first)
        b2: $_DFF_P_(C=clk_b, D=first, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b x>first.D logic-before-synchronizer"});
    EXPECT_EQ(crossingTo("first").severity(), Severity::Unsafe);
}

TEST_F(SynchronizersTest, ASourceThatReachesAnotherTargetIsAFanOut)
{
    elaborated(R"(module top(in clk_a, clk_b, d, out p, q)
        a: $_DFF_P_(C=clk_a, D=d, Q=x)
        n: $_NOT_(A=x, Y=y)
        o: $_DFF_P_(C=clk_b, D=y, Q=p)
        b1: $_DFF_P_(C=clk_b, D=x, Q=first)
        b2: $_DFF_P_(C=clk_b, D=first, Q=q)
    end)");
    EXPECT_EQ(classesOf("first"), (Lines{"fan-out", "synchronized-bit-unkept"}));
    EXPECT_EQ(classesOf("p"), Lines{"unsynchronized-bit"});
}

TEST_F(SynchronizersTest, ASourceMayFeedItsOwnAndAThirdClock)
{
    elaborated(R"(module top(in clk_a, clk_b, clk_c, d, out p, q, r)
        a: $_DFF_P_(C=clk_a, D=d, Q=x)
        own: $_DFF_P_(C=clk_a, D=x, Q=p)
        c: $_DFF_P_(C=clk_c, D=x, Q=r)
        b1: $_DFF_P_(C=clk_b, D=x, Q=first)
        b2: $_DFF_P_(C=clk_b, D=first, Q=q)
    end)");
    EXPECT_EQ(classesOf("first"), Lines{"synchronized-bit-unkept"});
}

TEST_F(SynchronizersTest, BitsOfOneRegisterThroughSynchronizersAreABus)
{
    elaborated(R"(module top(in clk_a, clk_b, [1:0] d, out [1:0] q)
        a0: $_DFF_P_(C=clk_a, D=d[0], Q="x[0]")
        a1: $_DFF_P_(C=clk_a, D=d[1], Q="x[1]")
        b0: $_DFF_P_(C=clk_b, D="x[0]", Q="first[0]")
        b1: $_DFF_P_(C=clk_b, D="x[1]", Q="first[1]")
        c0: $_DFF_P_(C=clk_b, D="first[0]", Q=q[0])
        c1: $_DFF_P_(C=clk_b, D="first[1]", Q=q[1])
    end)");
    EXPECT_EQ(lines(), (Lines{"clk_a>clk_b x[0]>first[0].D synchronized-bus-unkept",
                              "clk_a>clk_b x[1]>first[1].D synchronized-bus-unkept"}));
}

TEST_F(SynchronizersTest, BitsOfDifferentRegistersAreNoBus)
{
    elaborated(R"(module top(in clk_a, clk_b, [1:0] d, out [1:0] q)
        a0: $_DFF_P_(C=clk_a, D=d[0], Q=x)
        a1: $_DFF_P_(C=clk_a, D=d[1], Q=y)
        b0: $_DFF_P_(C=clk_b, D=x, Q="first[0]")
        b1: $_DFF_P_(C=clk_b, D=y, Q="first[1]")
        c0: $_DFF_P_(C=clk_b, D="first[0]", Q=q[0])
        c1: $_DFF_P_(C=clk_b, D="first[1]", Q=q[1])
    end)");
    EXPECT_EQ(lines(), (Lines{"clk_a>clk_b x>first[0].D synchronized-bit-unkept",
                              "clk_a>clk_b y>first[1].D synchronized-bit-unkept"}));
}

TEST_F(SynchronizersTest, BitsThatMeetBehindTheirSynchronizersAreTold)
{
    const std::string design = R"(module top(in clk_a, clk_b, [1:0] d, out p, q, r)
        a0: $_DFF_P_(C=clk_a, D=d[0], Q=x)
        a1: $_DFF_P_(C=clk_a, D=d[1], Q=y)
        b0: $_DFF_P_(C=clk_b, D=x, Q=first)
        b1: $_DFF_P_(C=clk_b, D=first, Q=p)
        c0: $_DFF_P_(C=clk_b, D=y, Q=second)
        c1: $_DFF_P_(C=clk_b, D=second, Q=q)
        )";
    elaborated(design + "g: $_AND_(A=p, B=q, Y=r) end");
    EXPECT_EQ(classesOf("first"), (Lines{"reconvergence", "synchronized-bit-unkept"}));
    EXPECT_EQ(crossingTo("second").meets, "r");
    database.reset(source);
    elaborated(design + "g: $_AND_(A=p, B=d[0], Y=r) end");
    EXPECT_EQ(classesOf("first"), Lines{"synchronized-bit-unkept"});
}

} // namespace
} // namespace crossings_test
