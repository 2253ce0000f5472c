#include "tests/unit/analysis/crossings/CrossingsTest.h"

#include "tests/support/NetlistText.h"

using namespace kvr::netlistdb;
using namespace kvr::netlistdb::analysis;

namespace crossings_test {

namespace {

constexpr const char *UNITS = R"(
    primitive $_DFF_P_(in C, D, out Q) end
    primitive $_DFFE_PP_(in C, D, E, out Q) end
    primitive $_DFF_PN0_(in C, D, R, out Q) end
    primitive $_DLATCH_P_(in E, D, out Q) end
    primitive $_AND_(in A, B, out Y) end
    primitive $_XOR_(in A, B, out Y) end
    primitive $_MUX_(in A, B, S, out Y) end
    primitive $_NOT_(in A, out Y) type=6 input=A end
    primitive ONE(out Y) type=1 end
)";

std::string lineOf(const ClockMap &map, const Crossing &crossing)
{
    const std::string launch = crossing.launch ? map.clocks()[*crossing.launch].name : "none";
    return launch + ">" + map.clocks()[crossing.capture].name + " " + crossing.from.name + ">" + crossing.to.name +
           (crossing.to.pin.empty() ? "" : "." + crossing.to.pin) + " " + nameOf(crossing.kind);
}

} // namespace

void CrossingsTest::elaborated(const std::string &text)
{
    database.parseElaboratedNetlist(testsupport::netlistFromText(UNITS + text));
    map = std::make_unique<ClockMap>(database, source);
}

void CrossingsTest::postMap(const std::string &text)
{
    source = IDesignDatabase::SOURCE_POST_MAP;
    database.parsePostMapNetlist(testsupport::netlistFromText(text));
    map = std::make_unique<ClockMap>(database, source);
}

Lines CrossingsTest::lines(const std::vector<ClockGroups> &groups) const
{
    Lines all;
    for (const Crossing &crossing : Crossings(*map, groups).all()) {
        all.push_back(lineOf(*map, crossing));
    }
    return all;
}

Crossing CrossingsTest::crossingTo(const std::string &to) const
{
    const Crossings crossings(*map);
    std::vector<Crossing> found;
    for (const Crossing &crossing : crossings.all()) {
        if (crossing.to.name == to) {
            found.push_back(crossing);
        }
    }
    EXPECT_EQ(found.size(), 1U) << to;
    return found.empty() ? Crossing() : found.front();
}

Lines CrossingsTest::classesOf(const std::string &to) const
{
    const Crossing crossing = crossingTo(to);
    Lines classes;
    for (std::size_t kind = 0; kind < CROSSING_CLASSES; ++kind) {
        if (crossing.holds(static_cast<CrossingClass>(kind))) {
            classes.emplace_back(nameOf(static_cast<CrossingClass>(kind)));
        }
    }
    return classes;
}

namespace {

TEST_F(CrossingsTest, OneClockAloneHasNoCrossings)
{
    elaborated(R"(module top(in clk, d, out q)
        a: $_DFF_P_(C=clk, D=d, Q=x)
        b: $_DFF_P_(C=clk, D=x, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines());
}

TEST_F(CrossingsTest, InputPortsLaunchNothing)
{
    elaborated(R"(module top(in clk, d, out q)
        b: $_DFF_P_(C=clk, D=d, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines());
}

TEST_F(CrossingsTest, BothEdgesOfAClockAreOneClock)
{
    elaborated(R"(module top(in clk, d, out q)
        a: $_DFF_P_(C=clk, D=d, Q=x)
        n: $_NOT_(A=clk, Y=not_clk)
        b: $_DFF_P_(C=not_clk, D=x, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines());
}

TEST_F(CrossingsTest, AClockUsedAsDataIsNoCrossing)
{
    elaborated(R"(module top(in clk_a, clk_b, d, out p, q)
        a: $_DFF_P_(C=clk_a, D=d, Q=p)
        b: $_DFF_P_(C=clk_b, D=clk_a, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines());
}

TEST_F(CrossingsTest, ARegisterInAClockNetworkIsNoCrossingToTheClockPin)
{
    elaborated(R"(module top(in clk_a, clk_b, d, out q)
        a: $_DFF_P_(C=clk_a, D=d, Q=gate)
        g: $_AND_(A=clk_b, B=gate, Y=gated)
        b: $_DFF_P_(C=gated, D=d, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines());
}

TEST_F(CrossingsTest, OneBitWithoutSynchronizerIsUnsafe)
{
    elaborated(R"(module top(in clk_a, clk_b, d, out q)
        a: $_DFF_P_(C=clk_a, D=d, Q=x)
        g: $_AND_(A=x, B=d, Y=y)
        n: $_NOT_(A=y, Y=z)
        b: $_DFF_P_(C=clk_b, D=z, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b x>q.D unsynchronized-bit"});
    const Crossing crossing = crossingTo("q");
    EXPECT_EQ(crossing.severity(), Severity::Unsafe);
    EXPECT_EQ(crossing.cells, 2U);
    EXPECT_TRUE(crossing.hasLogic);
    EXPECT_FALSE(crossing.hasSeveralSources);
    EXPECT_EQ(crossing.from.cell, "a");
    EXPECT_EQ(crossing.to.cell, "b");
    EXPECT_EQ(crossing.to.cellType, "$_DFF_P_");
}

TEST_F(CrossingsTest, TheNearestOfSeveralSourcesIsNamed)
{
    elaborated(R"(module top(in clk_a, clk_b, d, out q)
        far: $_DFF_P_(C=clk_a, D=d, Q=x)
        near: $_DFF_P_(C=clk_a, D=d, Q=y)
        n: $_NOT_(A=x, Y=z)
        g: $_AND_(A=z, B=y, Y=both)
        b: $_DFF_P_(C=clk_b, D=both, Q=q)
    end)");
    const Crossing crossing = crossingTo("q");
    EXPECT_EQ(crossing.from.name, "y");
    EXPECT_EQ(crossing.cells, 1U);
    EXPECT_TRUE(crossing.hasSeveralSources);
}

TEST_F(CrossingsTest, SeveralBitsOfOneRegisterAreABus)
{
    elaborated(R"(module top(in clk_a, clk_b, [1:0] d, out [1:0] q)
        a0: $_DFF_P_(C=clk_a, D=d[0], Q="x[0]")
        a1: $_DFF_P_(C=clk_a, D=d[1], Q="x[1]")
        b0: $_DFF_P_(C=clk_b, D="x[0]", Q=q[0])
        b1: $_DFF_P_(C=clk_b, D="x[1]", Q=q[1])
    end)");
    EXPECT_EQ(lines(),
              (Lines{"clk_a>clk_b x[0]>q[0].D unsynchronized-bus", "clk_a>clk_b x[1]>q[1].D unsynchronized-bus"}));
    EXPECT_EQ(crossingTo("q[1]").to.bus, "q");
    EXPECT_EQ(crossingTo("q[1]").to.bit, 1);
}

TEST_F(CrossingsTest, SeveralUnrelatedClocksInOneFanInAreTold)
{
    elaborated(R"(module top(in clk_a, clk_b, clk_c, d, out q)
        a: $_DFF_P_(C=clk_a, D=d, Q=x)
        c: $_DFF_P_(C=clk_c, D=d, Q=y)
        g: $_AND_(A=x, B=y, Y=both)
        b: $_DFF_P_(C=clk_b, D=both, Q=q)
    end)");
    EXPECT_EQ(lines(), (Lines{"clk_a>clk_b x>q.D several-clocks", "clk_c>clk_b y>q.D several-clocks"}));
}

TEST_F(CrossingsTest, ADividedClockIsRelatedToItsParent)
{
    elaborated(R"(module top(in clk, d, out q, back)
        n: $_NOT_(A=half, Y=not_half)
        h: $_DFF_P_(C=clk, D=not_half, Q=half)
        a: $_DFF_P_(C=clk, D=d, Q=x)
        b: $_DFF_P_(C=half, D=x, Q=q)
        c: $_DFF_P_(C=clk, D=q, Q=back)
    end)");
    EXPECT_EQ(lines(), (Lines{"clk>half x>q.D related-clocks", "half>clk q>back.D related-clocks"}));
}

TEST_F(CrossingsTest, ATargetThatIsNoFlipFlopIsTold)
{
    elaborated(R"(module top(in clk_a, clk_b, d, out p, q)
        a: $_DFF_P_(C=clk_a, D=d, Q=x)
        b: $_DFF_P_(C=clk_b, D=d, Q=p)
        l: $_DLATCH_P_(E=clk_b, D=x, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b x>q.D no-flip-flop"});
}

TEST_F(CrossingsTest, ALatchIsAlsoLookedThrough)
{
    elaborated(R"(module top(in clk_a, clk_b, clk_c, d, out p, q)
        a: $_DFF_P_(C=clk_a, D=d, Q=x)
        l: $_DLATCH_P_(E=clk_b, D=x, Q=y)
        b: $_DFF_P_(C=clk_b, D=d, Q=p)
        c: $_DFF_P_(C=clk_c, D=y, Q=q)
    end)");
    EXPECT_EQ(lines(), (Lines{"clk_a>clk_b x>y.D no-flip-flop", "clk_a>clk_c x>q.D unsynchronized-bit"}));
}

TEST_F(CrossingsTest, LoopsBetweenClocksEnd)
{
    elaborated(R"(module top(in clk_a, clk_b, d, out q)
        a: $_DFF_P_(C=clk_a, D=d, Q=x)
        g: $_AND_(A=x, B=z, Y=y)
        n: $_NOT_(A=y, Y=z)
        b: $_DFF_P_(C=clk_b, D=y, Q=q)
    end)");
    EXPECT_EQ(lines(), Lines{"clk_a>clk_b x>q.D unsynchronized-bit"});
}

TEST_F(CrossingsTest, ASourceThatWasResetIsRefused)
{
    elaborated("module top(in clk, d, out q) b: $_DFF_P_(C=clk, D=d, Q=q) end");
    database.reset(source);
    EXPECT_THROW(Crossings{*map}, std::logic_error);
}

TEST(CrossingClasses, HaveNamesThatLeadBackToThem)
{
    for (std::size_t number = 0; number < CROSSING_CLASSES; ++number) {
        const auto kind = static_cast<CrossingClass>(number);
        EXPECT_EQ(crossingClassOf(nameOf(kind)), kind);
    }
    EXPECT_EQ(crossingClassOf("unsynchronised-bit"), std::nullopt);
}

} // namespace
} // namespace crossings_test
