#include "ClockTest.h"

namespace clock_test {
namespace {

class RootClock : public ClockTest {
  protected:
    /// Path and name of the pair climbed to; the climb stops at the instance at @p stop.
    std::string climb(const std::string &path, const std::string &net, const std::string &stop = "")
    {
        IVDBInstance *const from = instance(path, ELABORATED);
        return nameOf(database->getRootClk(from, netOf(from, net), instance(stop, ELABORATED)));
    }
};

constexpr const char *THREE_LEVELS = R"(
    module c(in k) net own end
    module b(in j) u: c(k=j) end
    module a(in i) u: b(j=i) end
    module top(in clk) u: a(i=clk) end)";

TEST_F(RootClock, ClimbsThroughInputPortsToTheTop)
{
    elaborated(THREE_LEVELS);
    EXPECT_EQ(climb("u/u/u", "k"), "clk");
    EXPECT_EQ(climb("u/u", "j"), "clk");
}

TEST_F(RootClock, StaysWhereTheNetLeavesThroughNoPort)
{
    elaborated(THREE_LEVELS);
    EXPECT_EQ(climb("u/u/u", "own"), "u/u/u/own");
    EXPECT_EQ(climb("", "clk"), "clk");
}

TEST_F(RootClock, EndsAtTheStopInstance)
{
    elaborated(THREE_LEVELS);
    EXPECT_EQ(climb("u/u/u", "k", "u"), "u/i");
    EXPECT_EQ(climb("u/u/u", "k", "u/u"), "u/u/j");
    EXPECT_EQ(climb("u/u/u", "k", "u/u/u"), "u/u/u/k");
}

TEST_F(RootClock, ClimbsToTheTopWithoutStopInstance)
{
    elaborated(THREE_LEVELS);
    IVDBInstance *const from = instance("u/u/u", ELABORATED);
    EXPECT_EQ(nameOf(database->getRootClk(from, netOf(from, "k"), nullptr)), "clk");
    IVDBInstance *const root = database->getRoot(ELABORATED);
    const auto unchanged = database->getRootClk(root, netOf(root, "clk"), nullptr);
    EXPECT_EQ(unchanged.first, root);
    EXPECT_EQ(unchanged.second, netOf(root, "clk"));
}

TEST_F(RootClock, AnswersItsArgumentsForANetOrInstanceItDoesNotKnow)
{
    elaborated(THREE_LEVELS);
    IVDBInstance *const root = database->getRoot(ELABORATED);
    IVDBInstance *const inner = instance("u/u", ELABORATED);
    const DesignDatabase::InstanceNet noNet{inner, nullptr};
    EXPECT_EQ(database->getRootClk(inner, nullptr, root), noNet);
    const DesignDatabase::InstanceNet noInstance{nullptr, netOf(inner, "j")};
    EXPECT_EQ(database->getRootClk(nullptr, netOf(inner, "j"), root), noInstance);
}

TEST_F(RootClock, DoesNotClimbThroughOutputPorts)
{
    elaborated(R"(
        module m(out ck, in en) end
        module top(in clk) u: m(ck=clk) end)");
    EXPECT_EQ(climb("u", "ck"), "u/ck");
}

TEST_F(RootClock, ClimbsThroughPortsOfEveryOtherDirection)
{
    elaborated(R"(
        module m(inout ck, none ck2) end
        module top(in clk, clk2) u: m(ck=clk, ck2=clk2) end)");
    EXPECT_EQ(climb("u", "ck"), "clk");
    EXPECT_EQ(climb("u", "ck2"), "clk2");
}

TEST_F(RootClock, TakesTheLastOfSeveralNetsThatMeetTheNetOnOneLevel)
{
    elaborated(R"(
        module m(in a, b, c) connect b = a connect c = a end
        module top(in x, y, z) u: m(c=z, a=x, b=y) end)");
    EXPECT_EQ(climb("u", "a"), "y") << "in the order in which the pins were connected";
}

TEST_F(RootClock, TakesTheNetAboveTheLastWhenOneIsMetSeveralTimes)
{
    elaborated(R"(
        module m(in a, b) connect b = a end
        module mid(in i, j, k) connect j = i u: m(a=i, b=k) end
        module high(in x, y) u: mid(i=x, j=y, k=x) end
        module top(in s, t) u: high(x=s, y=t) end)");
    EXPECT_EQ(climb("u/u/u", "a", "u"), "u/x");
    EXPECT_EQ(climb("u/u/u", "a"), "s") << "x, y and x again meet the net two levels up";
}

TEST_F(RootClock, ComesToAnEndWhereAClockEntersEveryLevelThroughSeveralPorts)
{
    constexpr int LEVELS = 64;
    std::string text = "register DFF(in clk, d, out q) clock=clk end\n"
                       "module m0(in a, b, d, out q) connect b = a r: DFF(clk=a, d=d, q=q) end\n";
    for (int level = 1; level < LEVELS; ++level) {
        text += "module m" + std::to_string(level) + "(in a, b, d, out q) connect b = a u: m" +
                std::to_string(level - 1) + "(a=a, b=a, d=d, q=q) end\n";
    }
    elaborated(text.c_str());
    EXPECT_EQ(clocks(ELABORATED), (Names{"a"}));
    EXPECT_EQ(clockOf("", "q", ELABORATED), "a");
}

TEST_F(RootClock, PrefersTheHighestNet)
{
    elaborated(R"(
        module m(in a, b) connect b = a end
        module mid(in i) u: m(a=i, b=own) end
        module top(in clk) u: mid(i=clk) end)");
    EXPECT_EQ(climb("u/u", "a"), "clk") << "own is met last on its level but leads no further";
}

TEST_F(RootClock, StopsExaminingAnInstanceAtANetWithoutItem)
{
    elaborated(R"(
        module m(in a, b, c) connect b = a connect c = a end
        module top(in x, y, z) u: m(a=x, b=y, c=z) end)");
    auto *const late = new Verific::Net("late");
    Verific::Netlist *const top = copyOf(ELABORATED);
    top->Add(late);
    Verific::Instance *const u = top->GetInst("u");
    u->Connect(u->View()->GetPort("b"), late); // a=x, c=z, b=late
    EXPECT_EQ(climb("u", "a"), "z");
    u->Connect(u->View()->GetPort("c"), top->GetNet("y")); // a=x, b=late, c=y
    EXPECT_EQ(climb("u", "a"), "x");
}

TEST_F(RootClock, PassesThroughBlackBoxesWithoutEndingInOne)
{
    elaborated(R"(
        module m(in k) end
        module box(in i) blackbox u: m(k=i) end
        module top(in clk)
            open: box
            b: box(i=clk)
        end)");
    EXPECT_EQ(climb("b/u", "k"), "clk");
    EXPECT_EQ(climb("open/u", "k"), "open/u/k") << "the net in the black box is no candidate";
}

TEST_F(RootClock, TakesNoNetInsideAnOperatorOrPrimitive)
{
    elaborated(R"(
        module m(in k) end
        module op(in i) library=Operators u: m(k=i) end
        operator flagged(in i) x: m end
        module top(in clk)
            a: op
            b: op(i=clk)
        end)");
    // The library alone makes no operator of a module here.
    EXPECT_EQ(climb("a/u", "k"), "a/i");
    testsupport::netlistOfCell("op")->MakeOperator();
    EXPECT_EQ(climb("a/u", "k"), "a/u/k");
    EXPECT_EQ(climb("b/u", "k"), "clk");
}

} // namespace
} // namespace clock_test
