#include <netlistdb/analysis/Clocks.h>
#include <netlistdb/analysis/ProbePlan.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace analysis_test {
namespace {

using namespace kvr::netlistdb::analysis;

using NamesAndNets = std::vector<std::pair<std::string, std::string>>;

/// A bit on a net of the device; without one, it is inside of logic.
PlanBit bit(const std::string &name, const std::string &device)
{
    PlanBit result;
    result.name = name;
    result.device = device;
    result.grade = device.empty() ? ProbeGrade::Gone : ProbeGrade::Exact;
    result.reason = device.empty() ? GoneReason::InLogic : GoneReason::None;
    return result;
}

PlanProbe probe(const NamesAndNets &bits, const std::vector<PlanClock> &clocks = {{"clk", EDGE_RISE, {}}})
{
    PlanProbe result;
    result.name = "probe";
    result.clocks = clocks;
    for (const auto &[name, device] : bits) {
        result.bits.push_back(bit(name, device));
    }
    return result;
}

RebuiltProbe rebuilt(const NamesAndNets &bits, const std::vector<PlanClock> &clocks = {{"clk", EDGE_RISE, {}}})
{
    RebuiltProbe result;
    result.clocks = clocks;
    for (const auto &[name, device] : bits) {
        result.bits.push_back({name.empty() ? PlanBit() : bit(name, device), name.empty() ? "not there" : ""});
    }
    return result;
}

/// `verdict text; verdict text`
std::string changes(const PlanProbe &before, const RebuiltProbe &now)
{
    std::string all;
    for (const PlanFinding &finding : findChanges(before, now)) {
        all += (all.empty() ? "" : "; ") + std::string(nameOf(finding.verdict)) +
               (finding.text.empty() ? "" : " " + finding.text);
    }
    return all;
}

const PlanProbe BUS = probe({{"a[1]", "a[1]"}, {"a[0]", "a[0]"}});

TEST(PlanChanges, AreNoneWhenNothingChanged)
{
    EXPECT_EQ(changes(BUS, rebuilt({{"a[1]", "a[1]"}, {"a[0]", "a[0]"}})), "kept");
}

TEST(PlanChanges, LeaveAProbeThatIsOnOtherNetsOfTheDevice)
{
    EXPECT_EQ(changes(probe({{"a", "n1"}}), rebuilt({{"a", "n2"}})), "kept");
}

TEST(PlanChanges, TellTheNewNameOfAWholeBusOnce)
{
    RebuiltProbe now = rebuilt({{"b[1]", "b[1]"}, {"b[0]", "b[0]"}});
    now.bits[0].why = now.bits[1].why = "made alike";
    EXPECT_EQ(changes(BUS, now), "renamed to b (made alike)");
    EXPECT_EQ(changes(probe({{"a", "a"}}), rebuilt({{"b[3]", "x"}})), "renamed to b[3]");
}

TEST(PlanChanges, TellAnotherClockAndAnotherEdge)
{
    const PlanProbe before = probe({{"a", "a"}});
    EXPECT_EQ(changes(before, rebuilt({{"a", "a"}}, {{"fast", EDGE_RISE, {}}})),
              "clock-changed from clk rise to fast rise");
    EXPECT_EQ(changes(before, rebuilt({{"a", "a"}}, {{"clk", EDGE_FALL, {}}})),
              "clock-changed from clk rise to clk fall");
    EXPECT_EQ(changes(before, rebuilt({{"a", "a"}}, {})), "clock-changed from clk rise to none");
    EXPECT_EQ(changes(before, rebuilt({{"a", "a"}}, {{"clk", 0, {}}})), "kept");
}

TEST(PlanChanges, DoNotDependOnTheOrderOfClocks)
{
    const std::vector<PlanClock> clocks = {{"x", EDGE_RISE, {}}, {"y", EDGE_FALL, {}}};
    EXPECT_EQ(changes(probe({{"a", "a"}}, clocks), rebuilt({{"a", "a"}}, {clocks[1], clocks[0]})), "kept");
}

TEST(PlanChanges, TellThatOneVectorIsInSeveral)
{
    EXPECT_EQ(changes(BUS, rebuilt({{"hi", "hi"}, {"lo", "lo"}})), "split in hi, lo");
    EXPECT_EQ(changes(BUS, rebuilt({{"a[1]", "a[1]"}, {"lo", "lo"}})), "split in a, lo");
}

TEST(PlanChanges, TellThatOneVectorOfTheDeviceIsInSeveral)
{
    EXPECT_EQ(changes(BUS, rebuilt({{"a[1]", "a[1]"}, {"a[0]", "n7"}})), "split in the device in a, n7");
    // It was in several before.
    EXPECT_EQ(changes(probe({{"a[1]", "n1"}, {"a[0]", "n2"}}), rebuilt({{"a[1]", "n3"}, {"a[0]", "n4"}})), "kept");
}

TEST(PlanChanges, TellWhyBitsAreLost)
{
    EXPECT_EQ(changes(BUS, rebuilt({{"", ""}, {"", ""}})), "lost not there");
    EXPECT_EQ(changes(BUS, rebuilt({{"a[1]", ""}, {"a[0]", "a[0]"}})), "lost a[1]: gone:in-logic");
}

TEST(PlanChanges, KeepABitThatTheDeviceNeverHad)
{
    const PlanProbe before = probe({{"a[1]", ""}, {"a[0]", "n1"}});
    EXPECT_EQ(changes(before, rebuilt({{"a[1]", ""}, {"a[0]", "n1"}})), "kept");
    EXPECT_EQ(changes(before, rebuilt({{"a[1]", "n2"}, {"a[0]", "n1"}})), "kept");
}

TEST(PlanChanges, DoNotAskForTheDeviceWithoutAPostMapNetlist)
{
    RebuiltProbe now = rebuilt({{"a", ""}});
    now.bits[0].bit.grade.reset();
    EXPECT_EQ(changes(probe({{"a", "a"}}), now), "kept");
}

TEST(PlanChanges, ComeWithTheGravestFirst)
{
    EXPECT_EQ(changes(BUS, rebuilt({{"b[1]", "b[1]"}, {"", ""}}, {{"fast", EDGE_RISE, {}}})),
              "lost a[0]: not there; clock-changed from clk rise to fast rise; renamed to b");
}

} // namespace
} // namespace analysis_test
