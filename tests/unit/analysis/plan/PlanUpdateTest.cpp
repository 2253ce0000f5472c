#include <netlistdb/analysis/Clocks.h>
#include <netlistdb/analysis/ProbePlan.h>

#include <gtest/gtest.h>

#include <string>

namespace analysis_test {
namespace {

using namespace kvr::netlistdb::analysis;

const std::string HEAD = "netlistdb-plan 1\n";

/// @p plan after its first probe was found again as the first probe of @p now. A bit called "lost" was not.
std::string updated(const std::string &plan, const std::string &now)
{
    ProbePlan result = ProbePlan::parse(HEAD + plan);
    const PlanProbe found = ProbePlan::parse(HEAD + now).probes.front();
    RebuiltProbe rebuilt{found.clocks, {}};
    for (const PlanBit &bit : found.bits) {
        rebuilt.bits.push_back({bit.name == "lost" ? PlanBit() : bit, ""});
    }
    updateProbe(result, 0, rebuilt);
    return result.text().substr(HEAD.size());
}

const std::string BUS_TEXT = R"(# why
probe a # here
  # of a
  clock clk rise # fast
  # upper
  bit a[1] exact a[1] -
  bit a[0] exact a[0] - # lower
probe z
  bit z none - -
)";

TEST(PlanUpdate, TakesOverNamesClocksAndNetsAndKeepsComments)
{
    EXPECT_EQ(updated(BUS_TEXT, R"(probe b
  clock slow fall
  bit b[1] register n1 -
  bit b[0] exact b[0] 0000000000000001.0000000000000002
)"),
              R"(# why
probe b # here
  # of a
  clock slow fall # fast
  # upper
  bit b[1] register n1 -
  bit b[0] exact b[0] 0000000000000001.0000000000000002 # lower
probe z
  bit z none - -
)");
}

TEST(PlanUpdate, KeepsTheRangeThatWasAskedFor)
{
    EXPECT_EQ(updated("probe a[1:0]\n  bit a[1] none - -\n  bit a[0] none - -\n",
                      "probe b\n  bit b[1] none - -\n  bit b[0] none - -\n"),
              "probe b[1:0]\n  bit b[1] none - -\n  bit b[0] none - -\n");
}

TEST(PlanUpdate, MakesOneProbeOfEachVectorOfOneThatIsSplit)
{
    EXPECT_EQ(updated(BUS_TEXT, "probe x\n  clock clk rise\n  bit hi none - -\n  bit lo none - -\n"), R"(# why
probe hi # here
  # of a
  clock clk rise # fast
  # upper
  bit hi exact a[1] -
probe lo
  # of a
  clock clk rise # fast
  bit lo exact a[0] - # lower
probe z
  bit z none - -
)");
}

TEST(PlanUpdate, LeavesWhatWasNotFound)
{
    EXPECT_EQ(updated(BUS_TEXT, "probe x\n  bit lost none - -\n  bit lost none - -\n"), BUS_TEXT);
    EXPECT_EQ(updated("probe a\n  bit a[1] none - -\n  bit a[0] none - -\n",
                      "probe x\n  bit b[1] none - -\n  bit lost none - -\n"),
              "probe a\n  bit b[1] none - -\n  bit a[0] none - -\n");
}

TEST(PlanUpdate, KeepsWhatIsKnownOfTheDeviceWithoutAPostMapNetlist)
{
    EXPECT_EQ(updated("probe a\n  bit a structural:inverted n -\n", "probe b\n  bit b none - -\n"),
              "probe b\n  bit b structural:inverted n -\n");
}

TEST(PlanUpdate, GivesNoTwoProbesOneName)
{
    const std::string text =
        updated("probe a\n  bit a none - -\nprobe b\n  bit b none - -\n", "probe b\n  bit b none - -\n");
    EXPECT_EQ(text, "probe b'\n  bit b none - -\nprobe b\n  bit b none - -\n");
}

} // namespace
} // namespace analysis_test
