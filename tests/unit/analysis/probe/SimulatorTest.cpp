#include "analysis/probe/Simulator.h"
#include "tests/unit/clock/ClockTest.h"

#include <netlistdb/netlistdb.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>

namespace analysis_test {
namespace {

using namespace kvr::netlistdb;
using namespace kvr::netlistdb::analysis::probe;

constexpr const char *CELLS = R"(
    operator $_DFF_P_(in C, D, out Q) end
    operator $_DFF_PP0_(in C, D, R, out Q) end
    operator $_DFF_PP1_(in C, D, R, out Q) end
)";

class SimulatorTest : public clock_test::ClockTest {
  protected:
    void build(const char *top)
    {
        postMap((std::string(CELLS) + top).c_str());
        graph.emplace(*database, clock_test::POST_MAP);
        simulator.emplace(*graph);
    }
    Signal port(const std::string &name) const
    {
        const auto found = std::find_if(graph->ports.begin(), graph->ports.end(),
                                        [&](const TopPort &each) { return each.name == name; });
        return found != graph->ports.end() ? found->signal : SIGNAL_UNKNOWN;
    }
    void set(const std::string &name, const Lanes &value)
    {
        simulator->set(port(name), value);
        simulator->react();
    }
    const Lanes &operator[](const std::string &name) const { return (*simulator)[port(name)]; }

    std::optional<BitGraph> graph;
    std::optional<Simulator> simulator;
};

TEST_F(SimulatorTest, AResetThatStaysActiveTakesHoldOfEveryNewValue)
{
    build("module top(in c, d, r, out q) f: $_DFF_PP0_(C=c, D=d, R=r, Q=q) end");
    set("c", ZERO);
    set("d", ONE);
    set("r", ONE);
    EXPECT_EQ((*this)["q"], ZERO);
    set("q", ONE);
    EXPECT_EQ((*this)["q"], ZERO) << "a chosen value is reset, too";
    set("c", ONE);
    EXPECT_EQ((*this)["q"], ZERO) << "and so is what the clock brings";
    set("c", ZERO);
    set("r", ZERO);
    set("c", ONE);
    EXPECT_EQ((*this)["q"], ONE) << "without the reset, the register loads";
}

TEST_F(SimulatorTest, AResetIsTakenUpInEachRunInWhichItActs)
{
    build("module top(in c, d, r, out q, p) "
          "f: $_DFF_PP0_(C=c, D=d, R=r, Q=q) g: $_DFF_PP1_(C=c, D=d, R=r, Q=p) end");
    constexpr std::uint64_t FEW = 0xF0;
    set("c", ZERO);
    set("r", ZERO);
    set("q", ONE);
    set("p", ZERO);
    set("r", lanesOf(FEW));
    EXPECT_EQ((*this)["q"], lanesOf(~FEW));
    EXPECT_EQ((*this)["p"], lanesOf(FEW));
    set("r", lanesOf(FEW << 8));
    EXPECT_EQ((*this)["q"], lanesOf(~(FEW | FEW << 8)));
    EXPECT_EQ((*this)["p"], lanesOf(FEW | FEW << 8));
}

TEST_F(SimulatorTest, ARegisterThatResetsItselfGivesAPulse)
{
    build("module top(in c, d, out q) f: $_DFF_PP0_(C=c, D=d, R=q, Q=q) end");
    set("c", ZERO);
    set("d", ONE);
    set("q", ZERO);
    set("c", ONE);
    EXPECT_EQ((*this)["q"], ZERO);
    set("q", ONE);
    EXPECT_EQ((*this)["q"], ZERO);
}

TEST_F(SimulatorTest, ARegisterThatAnotherOneResetsFollowsItAtOnce)
{
    build("module top(in c, d, r, out q, p) "
          "f: $_DFF_PP0_(C=c, D=d, R=q, Q=p) g: $_DFF_PP1_(C=c, D=d, R=r, Q=q) end");
    set("c", ZERO);
    set("q", ZERO);
    set("p", ONE);
    set("r", ONE);
    EXPECT_EQ((*this)["q"], ONE);
    EXPECT_EQ((*this)["p"], ZERO);
}

TEST_F(SimulatorTest, RegistersTakeOverWhatStoodInFrontOfThemBeforeTheClock)
{
    build("module top(in c, d, out q, p) f: $_DFF_P_(C=c, D=d, Q=q) g: $_DFF_P_(C=c, D=q, Q=p) end");
    set("c", ZERO);
    set("d", lanesOf(0xAA));
    set("q", lanesOf(0xCC));
    set("c", ONE);
    EXPECT_EQ((*this)["q"], lanesOf(0xAA));
    EXPECT_EQ((*this)["p"], lanesOf(0xCC));
}

} // namespace
} // namespace analysis_test
