#include "ClockTest.h"

namespace clock_test {
namespace {

constexpr int TRACED_LEVELS = 200;

/// Modules m0, m1, … that each hold the one before as "u" and pass d and e down and q up. @p bottom fills m0, @p
/// special is a trait of the module half way.
std::string levels(const std::string &bottom, const std::string &special = "")
{
    std::string text = "register DFF(in clk, d, out q) clock=clk end operator ADD(in a, b, out o) end\n"
                       "module m0(in d, e, out q) " +
                       bottom + " end\n";
    for (int level = 1; level < TRACED_LEVELS; ++level) {
        const std::string name = "m" + std::to_string(level);
        text += "module " + name + "(in d, e, out q) " + (level == TRACED_LEVELS / 2 ? special : "") + " u: m" +
                std::to_string(level - 1) + "(d=d, e=e, q=q) end\n";
    }
    return text;
}

/// Path of the instance of module m<level>.
std::string pathOf(int level)
{
    std::string path = "u";
    for (int above = TRACED_LEVELS - 1; above > level; --above) {
        path += "/u";
    }
    return path;
}

class DeepTrace : public ClockTest {
  protected:
    std::string clockAt(int level, const std::string &net) { return clockOf(pathOf(level), net, ELABORATED); }
    /// The answers for one net at all levels, from the bottom up, each as often as it comes in a row.
    std::string answers(const std::string &net)
    {
        std::string text;
        std::string last;
        for (int level = 0; level < TRACED_LEVELS; ++level) {
            const std::string clock = clockAt(level, net);
            if (clock != last) {
                text += (text.empty() ? "" : ", ") + std::to_string(level) + ": " + clock;
                last = clock;
            }
        }
        return text;
    }
};

constexpr const char *TOP = R"(
    module top(in clk, other, d, out q)
        r: DFF(clk=clk, d=d, q=e)
        u: m199(d=d, e=e, q=q)
    end)";

TEST_F(DeepTrace, AnswersTheSameAtEveryLevelWhicheverIsAskedFirst)
{
    elaborated((levels("r: DFF(clk=e, d=d, q=q)") + TOP).c_str());
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(answers("d"), "0: none");
        EXPECT_EQ(answers("e"), "0: clk");
        EXPECT_EQ(answers("q"), "0: e");
    }
    EXPECT_TRUE(instanceCache().empty());
}

TEST_F(DeepTrace, EndsAtAnOperatorThatHasItsAnswerByThen)
{
    elaborated((levels("a: ADD(a=d, b=e, o=q)") + TOP).c_str());
    EXPECT_EQ(answers("q"), "0: clk");
    EXPECT_EQ(clockOf("", "q", ELABORATED), "clk");
    EXPECT_EQ(answers("d"), "0: none");
    EXPECT_EQ(instanceCache().size(), 1U);
}

TEST_F(DeepTrace, SeesAnOperatorOnTheWayThatGetsItsAnswerLater)
{
    elaborated((levels("", "library=Operators") + TOP).c_str());
    EXPECT_EQ(clockAt(0, "d"), "none");
    // Behind this net stands the operator, and e is the first of its inputs that leads to a register.
    EXPECT_EQ(clockAt(TRACED_LEVELS / 2 + 1, "q"), "clk");
    EXPECT_EQ(answers("d"), "0: clk, " + std::to_string(TRACED_LEVELS / 2 + 1) + ": none");
}

TEST_F(DeepTrace, ForgetsWhatItKnewWhenASourceComesOrGoes)
{
    elaborated((levels("") + TOP).c_str());
    EXPECT_EQ(answers("d"), "0: none");
    // The kept copy is changed under the same items, as if others had come to lie at their addresses.
    const Verific::Netlist *top = copyOf(ELABORATED);
    Verific::Instance *inner = top->GetInst("u");
    const auto feed = [&](const char *net) { inner->Connect(inner->View()->GetPort("d"), top->GetNet(net)); };
    feed("e");
    postMap("module flat(in d) end");
    EXPECT_EQ(answers("d"), "0: clk");
    feed("d");
    ASSERT_TRUE(database->reset(POST_MAP));
    EXPECT_EQ(answers("d"), "0: none");
}

} // namespace
} // namespace clock_test
