#include "ClockTest.h"

#include <stdexcept>

namespace clock_test {
namespace {

class ElaboratedPrepass : public ClockTest {
  protected:
    /// Imports @p text behind the definition of the register DFF.
    void withRegister(const std::string &text)
    {
        elaborated(("register DFF(in clk, d, out q) clock=clk end " + text).c_str());
    }
    Names clocks() { return ClockTest::clocks(ELABORATED); }
};

TEST_F(ElaboratedPrepass, RecordsTheClockOfARegisterUnderTheRoot)
{
    withRegister("module top(in clk, d, out q) r: DFF(clk=clk, d=d, q=q) end");
    EXPECT_EQ(clocks(), Names{"clk"});
    const IClockDomain *domain = database->listAllClockDomains(ELABORATED).at(0);
    EXPECT_EQ(domain->getInstance(), database->getRoot(ELABORATED));
    EXPECT_EQ(domain->getNet(), netOf(database->getRoot(ELABORATED), "clk"));
}

TEST_F(ElaboratedPrepass, NamesAClockThatEntersThroughThreeLevelsOfPortsAfterItsHighestNet)
{
    withRegister(R"(
        module c(in k, d) r: DFF(clk=k, d=d) end
        module b(in j, d) u: c(k=j, d=d) r: DFF(clk=j, d=d) end
        module a(in i, d) u: b(j=i, d=d) u2: c(k=i, d=d) end
        module top(in clk, d) u: a(i=clk, d=d) end)");
    EXPECT_EQ(clocks(), Names{"clk"});
}

TEST_F(ElaboratedPrepass, RecordsAClockMadeInsideAModuleOncePerInstance)
{
    withRegister(R"(
        module div(in clk, d) r: DFF(clk=clk, d=d, q=half) s: DFF(clk=half, d=d) end
        module top(in clk, d) u1: div(clk=clk, d=d) u2: div(clk=clk, d=d) end)");
    EXPECT_EQ(clocks(), (Names{"clk", "u1/half", "u2/half"}));
}

TEST_F(ElaboratedPrepass, CollectsTheClocksOfEveryInstanceOfOneRegisterInAModule)
{
    withRegister(R"(
        register LATE(in ck) clock=ck end
        module m(in a, b) r1: DFF(clk=a) r2: DFF(clk=b) r3: DFF(clk=a) r4: LATE(ck=own) end
        module top(in x, y, z) u1: m(a=x, b=y) u2: m(a=y, b=z) end)");
    EXPECT_EQ(clocks(), (Names{"u1/own", "u2/own", "x", "y", "z"}));
}

TEST_F(ElaboratedPrepass, IgnoresInstancesOfARegisterInOtherModules)
{
    withRegister(R"(
        module unused(in other) r: DFF(clk=other) end
        module top(in clk) r: DFF(clk=clk) end)");
    EXPECT_EQ(clocks(), Names{"clk"});
}

TEST_F(ElaboratedPrepass, CountsRegistersWithoutItemWhenOneOfTheirKindHasOne)
{
    withRegister(R"(
        register OTHER(in clk) clock=clk end
        module top(in c1, c2, c3) r1: DFF(clk=c1) x: ? r2: DFF(clk=c2) o: OTHER(clk=c3) end)");
    ASSERT_EQ(database->getRoot(ELABORATED)->getSubInstances().size(), 1U);
    EXPECT_EQ(clocks(), (Names{"c1", "c2"}));
}

TEST_F(ElaboratedPrepass, RecordsNothingForARegisterWithoutClock)
{
    elaborated(R"(
        register OPEN(in clk, d, out q) clock=clk end
        register NONE(in clk, d, out q) end
        module top(in clk, d) o: OPEN(d=d) n: NONE(clk=clk, d=d) end)");
    EXPECT_EQ(clocks(), Names{});
}

TEST_F(ElaboratedPrepass, TakesTheClockPortAloneWhateverItsDirection)
{
    elaborated(R"(
        register IO(in d, e, inout clk) clock=clk end
        register BACK(in d, out clk) clock=clk end
        module top(in d, e, a) i: IO(d=d, e=e, clk=a) b: BACK(clk=y) end)");
    EXPECT_EQ(clocks(), (Names{"a", "y"}));
}

TEST_F(ElaboratedPrepass, DoesNotLookIntoBlackBoxesOperatorsAndPrimitives)
{
    withRegister(R"(
        register BOXED(in clk) clock=clk blackbox end
        module box(in i) blackbox r: DFF(clk=i) end
        operator op(in i) r: DFF(clk=n1) end
        primitive prim(in i) r: DFF(clk=n2) end
        module top(in clk, c2) b: box(i=clk) o: op(i=clk) p: prim(i=clk) r: BOXED(clk=c2) end)");
    ASSERT_NE(instance("b/r", ELABORATED), nullptr);
    ASSERT_NE(instance("o/r", ELABORATED), nullptr);
    EXPECT_EQ(clocks(), Names{"c2"});
}

TEST_F(ElaboratedPrepass, LooksIntoARegisterThatIsAModule)
{
    withRegister(R"(
        module cell(in ck, d, out q) clock=ck r: DFF(clk=inner, d=d, q=q) end
        module top(in clk, d) u: cell(ck=clk, d=d) end)");
    EXPECT_EQ(clocks(), (Names{"clk", "u/inner"}));
}

TEST_F(ElaboratedPrepass, TakesTheClockAsItStandsAtTheRegister)
{
    withRegister(R"(
        primitive BUF(in i, out o) type=5 input=i end
        module top(in clk, d) b: BUF(i=clk, o=g) r: DFF(clk=g, d=d) end)");
    EXPECT_EQ(clocks(), Names{"g"});
}

TEST_F(ElaboratedPrepass, DoesNotReadItsArgumentAndAddsToTheTable)
{
    withRegister("module top(in clk, d) r: DFF(clk=clk, d=d) end");
    database->parseClkDomainElab(nullptr);
    EXPECT_EQ(clocks(), (Names{"clk", "clk"}));
}

TEST_F(ElaboratedPrepass, ThrowsWhenAClockNetHasNoItem)
{
    withRegister("module top(in clk, d) r: DFF(clk=clk, d=d) end");
    auto *const late = new Verific::Net("late");
    copyOf(ELABORATED)->Add(late);
    Verific::Instance *const r = copyOf(ELABORATED)->GetInst("r");
    r->Connect(r->View()->GetPort("clk"), late);
    try {
        database->parseClkDomainElab(copyOf(ELABORATED));
        FAIL() << "nothing thrown";
    } catch (const std::invalid_argument &error) {
        EXPECT_STREQ(error.what(), "VDBClockDomain: net is nullptr");
    }
    EXPECT_EQ(clocks(), Names{"clk"});
}

TEST_F(ElaboratedPrepass, OfATopThatIsARegisterRecordsNothing)
{
    withRegister("module top(in clk, d) clock=clk end");
    EXPECT_EQ(clocks(), Names{});
}

} // namespace
} // namespace clock_test
