#include <netlistdb/analysis/Clocks.h>
#include <netlistdb/analysis/ProbePlan.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

namespace analysis_test {
namespace {

using namespace kvr::netlistdb::analysis;

const std::string PLAN = R"(# Made for the boot loader.

netlistdb-plan 1

# where it is
probe u_cpu/pc_q # the counter
  clock clk_sys rise
  # the upper bit
  bit u_cpu/pc_q[1] exact u_cpu.pc_q[1] 0000000000000001.00000000000000ff
  bit u_cpu/pc_q[0] structural:inverted $abc$12$n7 - # as found
probe "odd \"name\" \\ # \n\t\x01"
  clock "clk a" -
  clock clk_b both
  bit "odd \"name\" \\ # \n\t\x01" gone:in-logic - 0000000000000001.0000000000000002*
probe grün
  bit grün none - -
# at the end
)";

std::string faultOf(const std::string &text)
{
    try {
        ProbePlan::parse(text);
    } catch (const PlanError &fault) {
        return std::to_string(fault.line()) + ": " + fault.what();
    }
    return "none";
}

TEST(ProbePlan, KnowsWhatItsLinesSay)
{
    const ProbePlan plan = ProbePlan::parse(PLAN);
    ASSERT_EQ(plan.probes.size(), 3U);
    const PlanProbe &counter = plan.probes[0];
    EXPECT_EQ(counter.name, "u_cpu/pc_q");
    ASSERT_EQ(counter.clocks.size(), 1U);
    EXPECT_EQ(counter.clocks[0].name, "clk_sys");
    EXPECT_EQ(counter.clocks[0].edges, EDGE_RISE);
    ASSERT_EQ(counter.bits.size(), 2U);
    EXPECT_EQ(counter.bits[0].grade, ProbeGrade::Exact);
    EXPECT_EQ(counter.bits[0].device, "u_cpu.pc_q[1]");
    EXPECT_EQ(counter.bits[0].fingerprint.near, 1U);
    EXPECT_EQ(counter.bits[0].fingerprint.deep, 255U);
    EXPECT_TRUE(counter.bits[0].fingerprint.isOnly);
    EXPECT_EQ(counter.bits[1].grade, ProbeGrade::Structural);
    EXPECT_TRUE(counter.bits[1].isInverted);
    EXPECT_EQ(counter.bits[1].fingerprint.deep, 0U);
    EXPECT_EQ(plan.probes[1].name, "odd \"name\" \\ # \n\t\x01");
    EXPECT_EQ(plan.probes[1].clocks[0].name, "clk a");
    EXPECT_EQ(plan.probes[1].clocks[1].edges, EDGE_RISE | EDGE_FALL);
    EXPECT_EQ(plan.probes[1].bits[0].reason, GoneReason::InLogic);
    EXPECT_EQ(plan.probes[1].bits[0].device, "");
    EXPECT_FALSE(plan.probes[1].bits[0].fingerprint.isOnly);
    EXPECT_EQ(plan.probes[2].bits[0].grade, std::nullopt);
}

TEST(ProbePlan, IsWrittenAsItWasReadWithItsComments)
{
    EXPECT_EQ(ProbePlan::parse(PLAN).text(), PLAN);
}

TEST(ProbePlan, ReadsLineEndsOfOtherSystemsAndALastLineWithoutEnd)
{
    std::string text;
    for (const char c : PLAN) {
        text.append(c == '\n' ? "\r\n" : std::string(1, c));
    }
    EXPECT_EQ(ProbePlan::parse(text).text(), PLAN);
    EXPECT_EQ(ProbePlan::parse(PLAN.substr(0, PLAN.size() - 1)).text(), PLAN);
}

TEST(ProbePlan, NamesTheLineAndTheFault)
{
    const std::string head = "netlistdb-plan 1\n";
    const std::string bit = "bit a none - -\n";
    EXPECT_EQ(faultOf(""), "1: is no plan: the line 'netlistdb-plan 1' is missing");
    EXPECT_EQ(faultOf("\nprobe a\n"), "2: is no plan: the first line is not 'netlistdb-plan 1'");
    EXPECT_EQ(faultOf("netlistdb-plan 1x\n"), "1: is no plan: the first line is not 'netlistdb-plan 1'");
    EXPECT_EQ(faultOf("netlistdb-plan 2\n"), "1: version 2 is newer than this program reads, which is 1");
    EXPECT_EQ(faultOf(head + "<<<<<<< mine\n"), "2: '<<<<<<<' is none of probe, clock, bit");
    EXPECT_EQ(faultOf(head + "probe\n"), "2: a probe has a name and nothing else");
    EXPECT_EQ(faultOf(head + "probe \"\"\n"), "2: a probe has an empty name");
    EXPECT_EQ(faultOf(head + "probe a\n" + "probe b\n" + bit), "2: a probe has no bit");
    EXPECT_EQ(faultOf(head + "probe a\n" + bit + "probe a\n" + bit), "4: probe 'a' is in line 2 already");
    EXPECT_EQ(faultOf(head + bit), "2: a bit stands before the first probe");
    EXPECT_EQ(faultOf(head + "clock c rise\n"), "2: a clock stands before the first probe");
    EXPECT_EQ(faultOf(head + "probe a\n" + bit + "clock c rise\n"), "4: a clock stands behind a bit of its probe");
    EXPECT_EQ(faultOf(head + "probe a\nclock c up\n"), "3: a clock has a name and one of rise, fall, both, -");
    EXPECT_EQ(faultOf(head + "probe a\nbit a exact\n"),
              "3: a bit has a name, a grade, a post-map net and a fingerprint");
    EXPECT_EQ(faultOf(head + "probe a\nbit a good n -\n"), "3: 'good' is no grade");
    EXPECT_EQ(faultOf(head + "probe a\nbit a gone n -\n"), "3: 'gone' is no grade");
    EXPECT_EQ(faultOf(head + "probe a\nbit a exact - -\n"), "3: a bit of this grade has a post-map net");
    EXPECT_EQ(faultOf(head + "probe a\nbit a unknown n -\n"), "3: a bit of this grade has no post-map net");
    EXPECT_EQ(faultOf(head + "probe a\nbit a none - 12.34\n"), "3: '12.34' is no fingerprint");
    EXPECT_EQ(faultOf(head + "probe \"a\n"), "2: a quotation mark is missing");
    EXPECT_EQ(faultOf(head + "probe \"a\\\n"), "2: a backslash in quotes stands before none of \" \\ n t x");
    EXPECT_EQ(faultOf(head + "probe \"a\\x0\"\n"), "2: \\x wants two hexadecimal digits");
    EXPECT_EQ(faultOf(head + "probe \"a\"b\n"), "2: a blank is missing behind a quotation mark");
    EXPECT_EQ(faultOf(head + "probe a#b\n"), "2: a word with # in it wants quotes");
}

/// Names that are likely to be taken apart wrongly.
std::string randomName(std::mt19937_64 &random)
{
    static const std::string pieces[] = {"a",
                                         "u_x/",
                                         "[3]",
                                         " ",
                                         "\t",
                                         "\n",
                                         "\r",
                                         "\"",
                                         "\\",
                                         "#",
                                         "-",
                                         "\\n",
                                         "\xC3\xBC",
                                         "\xFF",
                                         "]",
                                         ".",
                                         "$",
                                         "\x7F",
                                         std::string("\0x", 2),
                                         "~",
                                         "probe"};
    std::string name;
    do {
        name += pieces[random() % std::size(pieces)];
    } while (random() % 4 != 0);
    return random() % 16 == 0 ? "-" : name;
}

PlanNotes randomNotes(std::mt19937_64 &random)
{
    PlanNotes notes;
    for (auto lines = random() % 8; lines < 2; ++lines) {
        notes.above.emplace_back(random() % 2 == 0 ? "" : "  # \"what\" \\ it is");
    }
    notes.behind = random() % 4 == 0 ? "# \" # behind" : "";
    return notes;
}

ProbePlan randomPlan(std::mt19937_64 &random)
{
    ProbePlan plan;
    for (auto probes = random() % 4; probes > 0; --probes) {
        PlanProbe probe;
        probe.name = randomName(random) + std::to_string(probes);
        probe.notes = randomNotes(random);
        for (auto clocks = random() % 3; clocks > 0; --clocks) {
            probe.clocks.push_back({randomName(random), static_cast<std::uint8_t>(random() % 4), randomNotes(random)});
        }
        for (auto bits = random() % 3 + 1; bits > 0; --bits) {
            PlanBit bit;
            bit.name = randomName(random);
            if (random() % 4 != 0) {
                bit.grade = static_cast<ProbeGrade>(random() % 6);
                if (*bit.grade == ProbeGrade::Gone) {
                    bit.reason = static_cast<GoneReason>(random() % 7 + 1);
                } else if (*bit.grade != ProbeGrade::Unknown) {
                    bit.device = randomName(random);
                    bit.isInverted = random() % 2 == 0;
                }
            }
            if (random() % 2 == 0) {
                bit.fingerprint = {random(), random(), random() % 2 == 0};
            }
            bit.notes = randomNotes(random);
            probe.bits.push_back(std::move(bit));
        }
        plan.probes.push_back(std::move(probe));
    }
    return plan;
}

/// Everything that a plan holds but its text.
std::string contentsOf(const ProbePlan &plan)
{
    std::string all;
    const auto add = [&all](const std::string &text) { all += std::to_string(text.size()) + ":" + text + ";"; };
    const auto addNotes = [&](const PlanNotes &notes) {
        for (const std::string &line : notes.above) {
            add(line);
        }
        add(notes.behind);
    };
    for (const PlanProbe &probe : plan.probes) {
        add(probe.name);
        addNotes(probe.notes);
        for (const PlanClock &clock : probe.clocks) {
            add(clock.name);
            add(std::to_string(clock.edges));
            addNotes(clock.notes);
        }
        for (const PlanBit &bit : probe.bits) {
            add(bit.name);
            add(bit.grade ? nameOf(*bit.grade) : "none");
            add(nameOf(bit.reason));
            add(bit.device);
            add(bit.isInverted ? "~" : "");
            add(std::to_string(bit.fingerprint.near) + "," + std::to_string(bit.fingerprint.deep) + "," +
                std::to_string(bit.fingerprint.isOnly));
            addNotes(bit.notes);
        }
    }
    return all;
}

TEST(ProbePlan, HoldsAnyNamesThroughWritingAndReading)
{
    for (unsigned seed = 0; seed < 2000; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937_64 random(seed);
        const ProbePlan plan = randomPlan(random);
        const std::string text = plan.text();
        ASSERT_EQ(contentsOf(ProbePlan::parse(text)), contentsOf(plan)) << text;
        ASSERT_EQ(ProbePlan::parse(text).text(), text);
    }
}

TEST(ProbePlan, RefusesOrReadsWhateverTextItIsGiven)
{
    for (unsigned seed = 0; seed < 2000; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937_64 random(seed);
        std::string text = PLAN;
        for (auto changes = random() % 4 + 1; changes > 0; --changes) {
            const std::size_t at = random() % text.size();
            text.replace(at, random() % 6, randomName(random));
        }
        std::string written;
        try {
            written = ProbePlan::parse(text).text();
        } catch (const PlanError &fault) {
            EXPECT_LE(fault.line(), static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1);
            continue;
        }
        ASSERT_EQ(ProbePlan::parse(written).text(), written);
    }
}

} // namespace
} // namespace analysis_test
