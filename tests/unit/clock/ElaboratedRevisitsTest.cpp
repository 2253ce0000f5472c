#include "ClockTest.h"

namespace clock_test {
namespace {

/// Meetings of visited pairs after which a query gives up.
constexpr int LIMIT = 10240;

/// Netlists whose trace meets visited pairs an exact number of times before it comes to a register.
class ElaboratedRevisits : public ClockTest {
  protected:
    static constexpr const char *REGISTER = "register DFF(in clk, d, out q) clock=clk end\n";

    /// prefix0, prefix1, ... of @p count names, each followed by @p suffix, between commas.
    static std::string names(const std::string &prefix, int count, const std::string &suffix = "")
    {
        std::string text;
        for (int i = 0; i < count; ++i) {
            text += (i == 0 ? "" : ", ") + prefix + std::to_string(i) + suffix;
        }
        return text;
    }
    void importText(const std::string &text) { elaborated((REGISTER + text).c_str()); }

    /// An operator with @p loops inputs on its own output and one on a register.
    void importOperatorLoop(int loops)
    {
        importText("operator OP(in " + names("i", loops) +
                   ", last, out o) end module top(in clk, d) r: DFF(clk=clk, d=d, q=q) op: OP(" +
                   names("i", loops, "=y") + ", last=q, o=y) end");
    }
};

TEST_F(ElaboratedRevisits, BelowTheLimitTheAnswerIsRecorded)
{
    importOperatorLoop(LIMIT - 1);
    EXPECT_EQ(clockOf("", "y", ELABORATED), "clk");
    EXPECT_EQ(instanceCache(), (NamesByClock{{"clk", {"op"}}}));
}

TEST_F(ElaboratedRevisits, AtTheLimitTheAnswerIsGivenAndNotRecorded)
{
    importOperatorLoop(LIMIT);
    EXPECT_EQ(clockOf("", "y", ELABORATED), "clk");
    EXPECT_EQ(instanceCache(), NamesByClock{});
}

TEST_F(ElaboratedRevisits, BeyondTheLimitTheQueryGivesUp)
{
    importOperatorLoop(LIMIT + 1);
    EXPECT_EQ(clockOf("", "y", ELABORATED), "none");
    EXPECT_EQ(instanceCache(), NamesByClock{});
}

TEST_F(ElaboratedRevisits, CountAnewInEveryQuery)
{
    importOperatorLoop(LIMIT);
    EXPECT_EQ(clockOf("", "y", ELABORATED), "clk");
    EXPECT_EQ(clockOf("", "y", ELABORATED), "clk");
}

TEST_F(ElaboratedRevisits, OfALoopWithoutRegisterAreRecordedBelowTheLimitOnly)
{
    for (const int loops : {LIMIT - 1, LIMIT, LIMIT + 1}) {
        database = std::make_unique<DesignDatabase>(true);
        importText("operator OP(in " + names("i", loops) + ", out o) end module top(in clk, d) op: OP(" +
                   names("i", loops, "=y") + ", o=y) end");
        EXPECT_EQ(clockOf("", "y", ELABORATED), "none");
        EXPECT_EQ(instanceCache(), loops < LIMIT ? (NamesByClock{{"none", {"op"}}}) : NamesByClock{}) << loops;
    }
}

TEST_F(ElaboratedRevisits, BeyondTheLimitAPairOfACachedInstanceStillAnswers)
{
    // An operator with contents: first it gets its answer, then the trace climbs into it from the module within while
    // it meets visited pairs elsewhere.
    importText("operator AND(in a, b, out o) end operator OP(in " + names("i", LIMIT + 1) +
               ", out o) end module m(in a, out y) and: AND(a=a, b=b, o=y) op: OP(" + names("i", LIMIT + 1, "=y") +
               ", o=b) end module box(in z, out o) library=Operators u: m(a=z, y=w) end "
               "module top(in clk, d) r: DFF(clk=clk, d=d, q=q) box: box(z=q, o=n) end");
    EXPECT_EQ(clockOf("", "n", ELABORATED), "clk");
    EXPECT_EQ(clockOf("box/u", "y", ELABORATED), "clk");
    EXPECT_EQ(instanceCache(), (NamesByClock{{"clk", {"box"}}}));
}

TEST_F(ElaboratedRevisits, AreCountedWhereTheTraceClimbs)
{
    for (const int loops : {LIMIT - 1, LIMIT, LIMIT + 1}) {
        database = std::make_unique<DesignDatabase>(true);
        std::string connects;
        for (int i = 0; i < loops; ++i) {
            connects += "connect i" + std::to_string(i) + " = y ";
        }
        importText("operator INV(in a, out o) end module m(in " + names("i", loops) +
                   ", last, out y) connect last = y " + connects +
                   "end module top(in clk, d) r: DFF(clk=clk, d=d, q=q) inv: INV(a=q, o=n) u: m(" +
                   names("i", loops, "=x") + ", last=n, y=x) end");
        EXPECT_EQ(clockOf("", "x", ELABORATED), loops > LIMIT ? "none" : "clk");
        EXPECT_EQ(instanceCache(), loops < LIMIT ? (NamesByClock{{"clk", {"inv"}}}) : NamesByClock{}) << loops;
    }
}

TEST_F(ElaboratedRevisits, AreCountedWhereTheTraceDescends)
{
    for (const int loops : {LIMIT - 1, LIMIT, LIMIT + 1}) {
        database = std::make_unique<DesignDatabase>(true);
        std::string connects;
        for (int i = 0; i < loops; ++i) {
            connects += "connect o" + std::to_string(i) + " = a ";
        }
        importText(
            "operator OP(in " + names("i", loops) + ", last, out o) end module m(in a, out " + names("o", loops) +
            ") " + connects + "end module top(in clk, d) r: DFF(clk=clk, d=d, q=q) op: OP(" +
            [&] {
                std::string pins;
                for (int i = 0; i < loops; ++i) {
                    pins += "i" + std::to_string(i) + "=x" + std::to_string(i) + ", ";
                }
                return pins;
            }() +
            "last=q, o=n) u: m(a=n, " +
            [&] {
                std::string pins;
                for (int i = 0; i < loops; ++i) {
                    pins += (i == 0 ? "o" : ", o") + std::to_string(i) + "=x" + std::to_string(i);
                }
                return pins;
            }() +
            ") end");
        EXPECT_EQ(clockOf("u", "a", ELABORATED), loops > LIMIT ? "none" : "clk");
        EXPECT_EQ(instanceCache(), loops < LIMIT ? (NamesByClock{{"clk", {"op"}}}) : NamesByClock{}) << loops;
    }
}

TEST_F(ElaboratedRevisits, AreNotCountedForPairsThatOnlyWait)
{
    const int inputs = LIMIT + 2;
    importText("operator OP(in " + names("i", inputs) +
               ", last, out o) end module top(in clk, d) r: DFF(clk=clk, d=d, q=q) op: OP(" + names("i", inputs, "=d") +
               ", last=q, o=y) end");
    EXPECT_EQ(clockOf("", "y", ELABORATED), "clk") << "d is pushed again and again before it is visited";
    EXPECT_EQ(instanceCache(), (NamesByClock{{"clk", {"op"}}}));
}

} // namespace
} // namespace clock_test
