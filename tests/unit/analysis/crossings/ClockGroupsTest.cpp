#include "tests/unit/analysis/crossings/CrossingsTest.h"

using namespace kvr::netlistdb::analysis;

namespace crossings_test {
namespace {

class ClockGroupsTest : public CrossingsTest {
  protected:
    ClockGroupsTest()
    {
        elaborated(R"(module top(in clk_a, clk_b, d, out p, q)
            n: $_NOT_(A=half, Y=not_half)
            h: $_DFF_P_(C=clk_a, D=not_half, Q=half)
            a: $_DFF_P_(C=clk_a, D=d, Q=x)
            b: $_DFF_P_(C=clk_b, D=x, Q=p)
            c: $_DFF_P_(C=half, D=x, Q=q)
        end)");
    }
    ClockId clock(const char *name) const { return map->find(name).value(); }
};

TEST_F(ClockGroupsTest, WithoutGroupsTheNetlistTellsWhichClocksAreRelated)
{
    EXPECT_EQ(lines(), (Lines{"clk_a>clk_b x>p.D unsynchronized-bit", "clk_a>half x>q.D related-clocks"}));
}

TEST_F(ClockGroupsTest, ClocksOfOneAsynchronousGroupAreRelatedAndOfTwoAreNot)
{
    const std::vector<ClockGroups> groups{
        {ClockGroups::Kind::Asynchronous, {{clock("clk_a"), clock("clk_b")}, {clock("half")}}}};
    EXPECT_EQ(lines(groups), (Lines{"clk_a>clk_b x>p.D related-clocks", "clk_a>half x>q.D unsynchronized-bit"}));
}

TEST_F(ClockGroupsTest, ALaterStatementOverridesAnEarlierOne)
{
    const std::vector<ClockGroups> groups{{ClockGroups::Kind::Asynchronous, {{clock("clk_a")}, {clock("half")}}},
                                          {ClockGroups::Kind::Asynchronous, {{clock("clk_a"), clock("half")}}}};
    EXPECT_EQ(lines(groups)[1], "clk_a>half x>q.D related-clocks");
}

TEST_F(ClockGroupsTest, BetweenExclusiveGroupsNothingCrosses)
{
    const std::vector<ClockGroups> groups{{ClockGroups::Kind::Exclusive, {{clock("clk_a")}, {clock("clk_b")}}}};
    EXPECT_EQ(lines(groups), Lines{"clk_a>half x>q.D related-clocks"});
}

} // namespace
} // namespace crossings_test
