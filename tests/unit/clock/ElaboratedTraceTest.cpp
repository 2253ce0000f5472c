#include "ClockTest.h"

#include <netlistdb/VDBInstance.h>

#include <algorithm>

namespace clock_test {
namespace {

class ElaboratedTrace : public ClockTest {
  protected:
    /// Imports @p text behind the definitions of the usual generic cells.
    void withCells(const std::string &text)
    {
        elaborated((R"(
            register DFF(in clk, d, out q) clock=clk end
            operator ADD(in a, b, out o) end
            operator INV(in a, out o) end
            primitive AND(in a, b, out o) end
            primitive BUF(in i, out o) type=5 input=i end
        )" + text)
                       .c_str());
    }
    std::string clockOf(const std::string &net) { return ClockTest::clockOf("", net, ELABORATED); }
    std::string clockIn(const std::string &path, const std::string &net)
    {
        return ClockTest::clockOf(path, net, ELABORATED);
    }
    Verific::Instance *copied(const char *instance) { return copyOf(ELABORATED)->GetInst(instance); }
};

TEST_F(ElaboratedTrace, OfARegisterInAModuleAnswersTheNetOfTheTopThatFeedsItsClock)
{
    withCells(R"(
        module m(in ck, d, out q) r: DFF(clk=ck, d=d, q=q) end
        module top(in clk, d, out q) u: m(ck=clk, d=d, q=q) end)");
    IVDBInstance *const root = database->getRoot(ELABORATED);
    const IClockDomain *domain = database->findDrivingClockDomains(root, netOf(root, "q"), ELABORATED);
    ASSERT_NE(domain, nullptr);
    EXPECT_EQ(domain->getName(), "clk");
    EXPECT_EQ(domain->getInstance(), root);
    EXPECT_EQ(clockIn("u", "q"), "clk");
}

TEST_F(ElaboratedTrace, AnswersAClockMadeInsideAModuleUnderThatModulesInstance)
{
    withCells(R"(
        module m(in ck, d, out q)
            div: DFF(clk=ck, d=d, q=half)
            r: DFF(clk=half, d=d, q=q)
        end
        module top(in clk, d, out q1, q2) u1: m(ck=clk, d=d, q=q1) u2: m(ck=clk, d=d, q=q2) end)");
    EXPECT_EQ(clockOf("q1"), "u1/half");
    EXPECT_EQ(clockOf("q2"), "u2/half");
    EXPECT_EQ(clockIn("u2", "half"), "clk");
}

TEST_F(ElaboratedTrace, GoesThroughOneBufferOnTheClock)
{
    withCells(R"(
        module top(in clk, d, out q, p)
            b1: BUF(i=clk, o=g1)
            b2: BUF(i=g1, o=g2)
            r1: DFF(clk=g1, d=d, q=q)
            r2: DFF(clk=g2, d=d, q=p)
            r3: DFF(clk=clk, d=d, q=s)
        end)");
    EXPECT_EQ(clockOf("q"), "clk");
    EXPECT_EQ(clockOf("p"), "g1");
}

TEST_F(ElaboratedTrace, AnswersNothingWhenTheInputOfTheClockBufferIsNoDomain)
{
    withCells("module top(in clk, d, out q) b: BUF(i=clk, o=g) r: DFF(clk=g, d=d, q=q) end");
    EXPECT_EQ(clocks(ELABORATED), Names{"g"});
    EXPECT_EQ(clockOf("q"), "none");
}

TEST_F(ElaboratedTrace, TellsAClockBufferByItsTypeCodeAlone)
{
    withCells(R"(
        primitive NOT(in i, out o) type=6 input=i end
        module odd(in i, out o) type=5 input=i end
        module top(in clk, d, out q, p)
            n: NOT(i=clk, o=g1)
            m: odd(i=clk, o=g2)
            r1: DFF(clk=g1, d=d, q=q)
            r2: DFF(clk=g2, d=d, q=p)
            r3: DFF(clk=clk, d=d, q=s)
        end)");
    EXPECT_EQ(clockOf("q"), "g1");
    EXPECT_EQ(clockOf("p"), "clk");
}

TEST_F(ElaboratedTrace, AnswersNothingWhenTheClockBufferHasNoInput)
{
    withCells(R"(
        primitive NONE(in i, out o) type=5 end
        module top(in clk, d, out q, p)
            b1: NONE(i=clk, o=g1)
            b2: BUF(o=g2)
            r1: DFF(clk=g1, d=d, q=q)
            r2: DFF(clk=g2, d=d, q=p)
            r3: DFF(clk=clk, d=d, q=s)
        end)");
    EXPECT_EQ(clockOf("q"), "none");
    EXPECT_EQ(clockOf("p"), "none");
}

TEST_F(ElaboratedTrace, PassesAnAdderAndStopsThereNextTime)
{
    withCells(R"(
        module top(in clk, d, out q)
            r1: DFF(clk=clk, d=d, q=a)
            add: ADD(a=a, b=d, o=sum)
            inv: INV(a=sum, o=n)
            r2: DFF(clk=clk, d=sum, q=q)
        end)");
    EXPECT_EQ(clockOf("sum"), "clk");
    EXPECT_EQ(instanceCache(), (NamesByClock{{"clk", {"add"}}}));
    delete copied("r1"); // from here on no trace would find the clock
    EXPECT_EQ(clockOf("sum"), "clk");
    EXPECT_EQ(clockOf("n"), "clk") << "it meets the adder";
    EXPECT_EQ(instanceCache(), (NamesByClock{{"clk", {"add", "inv"}}}));
    EXPECT_EQ(clockOf("a"), "none");
}

TEST_F(ElaboratedTrace, RecordsNullForOperatorsThatReachNoRegisterAndStopsThereNextTime)
{
    withCells(R"(
        module top(in clk, d, e, out q)
            add: ADD(a=d, b=e, o=sum)
            r: DFF(clk=clk, d=d, q=a)
            and: AND(a=sum, b=a, o=y)
        end)");
    EXPECT_EQ(clockOf("sum"), "none");
    EXPECT_EQ(instanceCache(), (NamesByClock{{"none", {"add"}}}));
    EXPECT_EQ(clockOf("y"), "none") << "the adder stands before the register";
    EXPECT_EQ(instanceCache(), (NamesByClock{{"none", {"add", "and"}}}));
    EXPECT_EQ(clockOf("a"), "clk");
}

TEST_F(ElaboratedTrace, GivesEveryOperatorItMetTheAnswerForGood)
{
    withCells(R"(
        module top(in c1, c2, d, out q)
            r1: DFF(clk=c1, d=d, q=a)
            r2: DFF(clk=c2, d=d, q=b)
            inv: INV(a=a, o=x)
            not: INV(a=a, o=z)
            add: ADD(a=x, b=b, o=y)
        end)");
    EXPECT_EQ(clockOf("y"), "c2") << "r2 is nearer";
    EXPECT_EQ(instanceCache(), (NamesByClock{{"c2", {"add", "inv"}}})) << "inv was met on the way, not was not";
    EXPECT_EQ(clockOf("x"), "c2");
    EXPECT_EQ(clockOf("z"), "c1");
    EXPECT_EQ(clockOf("a"), "c1");
    EXPECT_EQ(instanceCache(), (NamesByClock{{"c1", {"not"}}, {"c2", {"add", "inv"}}}));
}

TEST_F(ElaboratedTrace, DoesNotRecordWhatOnlyWaited)
{
    withCells(R"(
        module top(in c1, c2, d, out q)
            r1: DFF(clk=c1, d=d, q=a)
            r2: DFF(clk=c2, d=d, q=b)
            inv: INV(a=a, o=x)
            add: ADD(b=b, a=x, o=y)
        end)");
    EXPECT_EQ(clockOf("y"), "c2");
    EXPECT_EQ(instanceCache(), (NamesByClock{{"c2", {"add"}}}));
    EXPECT_EQ(clockOf("x"), "c1");
    EXPECT_EQ(instanceCache(), (NamesByClock{{"c1", {"inv"}}, {"c2", {"add"}}}));
}

TEST_F(ElaboratedTrace, AnswersEveryNetSeenInACachedInstanceFromTheCache)
{
    withCells(R"(
        module top(in clk, d)
            r: DFF(clk=clk, d=d, q=a)
            inv: INV(a=a, o=n)
        end)");
    IVDBInstance *const inv = instance("inv", ELABORATED);
    IVDBNet *const d = netOf(database->getRoot(ELABORATED), "d");
    EXPECT_EQ(nameOf(database->findDrivingClockDomains(inv, d, ELABORATED)), "none");
    EXPECT_EQ(clockOf("n"), "clk");
    EXPECT_EQ(nameOf(database->findDrivingClockDomains(inv, d, ELABORATED)), "clk");
}

TEST_F(ElaboratedTrace, OfANetWithoutDriverAtTheTopAnswersNothingAndRecordsNothing)
{
    withCells("module top(in clk, d, out q) r: DFF(clk=clk, d=d, q=q) net open end");
    EXPECT_EQ(clockOf("d"), "none");
    EXPECT_EQ(clockOf("open"), "none");
    EXPECT_EQ(instanceCache(), NamesByClock{});
    EXPECT_TRUE(database->drivingClockCache().empty());
}

TEST_F(ElaboratedTrace, LeavesThePairCacheAlone)
{
    withCells(R"(
        module top(in clk, d)
            r: DFF(clk=clk, d=d, q=a)
            inv: INV(a=a, o=n)
        end)");
    EXPECT_EQ(clockOf("n"), "clk");
    EXPECT_TRUE(database->drivingClockCache().empty());
}

TEST_F(ElaboratedTrace, LetsTheFirstRegisterDecideEvenWhenItHasNoClock)
{
    withCells(R"(
        register NONE(in clk, d, out q) end
        module top(in clk, d)
            open: DFF(d=d, q=a)
            none: NONE(clk=clk, d=d, q=c)
            r: DFF(clk=clk, d=d, q=b)
            and: AND(a=a, b=b, o=y)
            add: ADD(a=c, b=b, o=z)
        end)");
    EXPECT_EQ(clockOf("y"), "none");
    EXPECT_EQ(instanceCache(), (NamesByClock{{"none", {"and"}}}));
    EXPECT_EQ(clockOf("z"), "none");
    EXPECT_EQ(clockOf("b"), "clk");
}

TEST_F(ElaboratedTrace, LooksFirstWhetherACellIsARegister)
{
    elaborated(R"(
        register DFF(in clk, d, out q) clock=clk end
        register OPREG(in clk, d, out q) library=Operators clock=clk end
        module MODREG(in clk, d, out q) clock=clk r: DFF(clk=d, d=d, q=q) end
        module top(in c1, c2, d, out p, q)
            a: OPREG(clk=c1, d=d, q=p)
            b: MODREG(clk=c2, d=d, q=q)
        end)");
    EXPECT_EQ(clockOf("p"), "c1");
    EXPECT_EQ(clockOf("q"), "c2");
    EXPECT_EQ(instanceCache(), NamesByClock{});
}

TEST_F(ElaboratedTrace, TellsGenericCellsByTheExactNameOfTheirLibrary)
{
    elaborated(R"(
        register DFF(in clk, d, out q) clock=clk end
        operator OP(in a, out o) library=operators end
        operator OP2(in a, out o) library=work end
        module MOD(in a, out o) library=Operators end
        module MOD2(in a, out o) library=Primitives end
        module top(in clk, d)
            r: DFF(clk=clk, d=d, q=q)
            o1: OP(a=q, o=n1)
            o2: OP2(a=q, o=n2)
            m1: MOD(a=q, o=n3)
            m2: MOD2(a=q, o=n4)
        end)");
    EXPECT_EQ(clockOf("n1"), "none");
    EXPECT_EQ(clockOf("n2"), "none");
    EXPECT_EQ(clockOf("n3"), "clk");
    EXPECT_EQ(clockOf("n4"), "clk");
    EXPECT_EQ(instanceCache(), (NamesByClock{{"clk", {"m1", "m2"}}}));
}

TEST_F(ElaboratedTrace, TakesInputsInTheOrderOfThePinsAndOutputsNever)
{
    withCells(R"(
        operator SUM(in a, b, inout c, out o, carry) end
        module top(in c1, c2, c3, d)
            r1: DFF(clk=c1, d=d, q=q1)
            r2: DFF(clk=c2, d=d, q=q2)
            r3: DFF(clk=c3, d=d, q=q3)
            s1: SUM(carry=q3, b=q2, a=q1, o=y)
            s2: SUM(carry=q3, c=q1, b=q2, o=z)
        end)");
    EXPECT_EQ(clockOf("y"), "c2");
    EXPECT_EQ(clockOf("z"), "c1") << "inout pins count as inputs";
}

TEST_F(ElaboratedTrace, TakesTheFirstDriverOfANetThatHasSeveral)
{
    withCells(R"(
        module top(in c1, c2, d)
            r1: DFF(clk=c1, d=d, q=q)
            r2: DFF(clk=c2, d=d, q=q)
        end)");
    EXPECT_EQ(clockOf("q"), "c1");
}

TEST_F(ElaboratedTrace, DescendsIntoTheModuleThatDrivesANet)
{
    withCells(R"(
        module c(in k, d, out o, p) r: DFF(clk=k, d=d, q=x) i: INV(a=x, o=o) j: DFF(clk=d, d=k, q=p) end
        module b(in k, d, out o, p) u: c(k=k, d=d, o=o, p=p) end
        module top(in clk, d, out o, p) u: b(k=clk, d=d, o=o, p=p) end)");
    EXPECT_EQ(clockOf("o"), "clk");
    EXPECT_EQ(clockOf("p"), "d") << "through the port that drives it";
    EXPECT_EQ(instanceCache(), (NamesByClock{{"clk", {"u/u/i"}}}));
}

TEST_F(ElaboratedTrace, StopsAtAnOutputThatNothingDrivesInside)
{
    withCells(R"(
        module m(in d, out y, z) connect z = - end
        blackbox box(in d, out y) end
        module top(in clk, d)
            r: DFF(clk=clk, d=d, q=q)
            u: m(d=q, y=y, z=z)
            b: box(d=q, y=x)
            a1: AND(a=y, b=q, o=n1)
            a2: AND(a=z, b=q, o=n2)
            a3: AND(a=x, b=q, o=n3)
        end)");
    EXPECT_EQ(clockOf("y"), "none");
    EXPECT_EQ(clockOf("z"), "none");
    EXPECT_EQ(clockOf("x"), "none");
    EXPECT_EQ(instanceCache(), NamesByClock{});
    EXPECT_EQ(clockOf("n1"), "clk") << "what else waits is still looked at";
    EXPECT_EQ(clockOf("n2"), "clk");
    EXPECT_EQ(clockOf("n3"), "clk");
}

TEST_F(ElaboratedTrace, ClimbsFromAnInputToTheNetThatFeedsIt)
{
    withCells(R"(
        module leaf(in a, inout b, out y, z) i: INV(a=a, o=y) j: INV(a=b, o=z) end
        module mid(in a, out y, z) u: leaf(a=a, b=a, y=y, z=z) end
        module top(in clk, d)
            r: DFF(clk=clk, d=d, q=q)
            u1: mid(a=q, y=y1)
            u2: mid(a=d, y=y2)
        end)");
    EXPECT_EQ(clockIn("u1/u", "y"), "clk");
    EXPECT_EQ(clockIn("u1/u", "z"), "clk") << "through an inout port";
    EXPECT_EQ(clockIn("u2/u", "y"), "none");
    EXPECT_EQ(instanceCache(), (NamesByClock{{"clk", {"u1/u/i", "u1/u/j"}}, {"none", {"u2/u/i"}}}));
}

TEST_F(ElaboratedTrace, GoesThroughAModuleWhoseInputIsItsOutput)
{
    withCells(R"(
        module through(in a, out y) connect y = a end
        module top(in clk, d)
            r: DFF(clk=clk, d=d, q=q)
            u1: through(a=q, y=n)
            u2: through(a=n, y=y)
        end)");
    EXPECT_EQ(clockOf("y"), "clk");
}

TEST_F(ElaboratedTrace, StopsExaminingAnOperatorAtANetWithoutItem)
{
    withCells(R"(
        module top(in clk, d)
            r: DFF(clk=clk, d=d, q=q)
            add: ADD(a=d, o=y)
            inv: ADD(a=q, o=z)
        end)");
    auto *const late = new Verific::Net("late");
    copyOf(ELABORATED)->Add(late);
    Verific::Instance *const add = copied("add");
    add->Connect(add->View()->GetPort("a"), late);
    add->Connect(add->View()->GetPort("b"), copyOf(ELABORATED)->GetNet("q"));
    Verific::Instance *const inv = copied("inv");
    inv->Connect(inv->View()->GetPort("b"), late);
    EXPECT_EQ(clockOf("y"), "none");
    EXPECT_EQ(clockOf("z"), "clk");
    EXPECT_EQ(instanceCache(), (NamesByClock{{"none", {"add"}}, {"clk", {"inv"}}}));
}

TEST_F(ElaboratedTrace, RunsOutOfALoopWithoutRegister)
{
    withCells(R"(
        module top(in d)
            a: INV(a=n3, o=n1)
            b: AND(a=n1, b=n2, o=n2)
            c: INV(a=n2, o=n3)
        end)");
    EXPECT_EQ(clockOf("n1"), "none");
    EXPECT_EQ(instanceCache(), (NamesByClock{{"none", {"a", "b", "c"}}}));
}

TEST_F(ElaboratedTrace, TakesTheFirstSubInstanceOfTheDriversName)
{
    withCells(R"(
        module top(in clk, d)
            r: DFF(clk=clk, d=d, q=q)
            u: INV(a=d, o=x)
            u: INV(a=q, o=y)
        end)");
    EXPECT_EQ(clockOf("y"), "clk");
    const auto answers = database->elaboratedInstanceCache();
    ASSERT_EQ(answers.size(), 1U);
    EXPECT_EQ(answers[0].first, database->getRoot(ELABORATED)->getSubInstances().at(1));
    EXPECT_EQ(clockOf("x"), "clk") << "both go by the first instance of their name";
}

TEST_F(ElaboratedTrace, SearchesTheDriverByNameWhereTheNetIsOfAnotherModule)
{
    withCells(R"(
        module other(in d) u: INV(a=d, o=x) u: INV(a=d, o=y) u: INV(a=d, o=z) end
        module top(in clk, d)
            r: DFF(clk=clk, d=d, q=q)
            s: DFF(clk=clk, d=d)
            u: INV(a=q, o=y)
            o: other(d=d)
        end)");
    // The net y of the top, whose driver u stands third, asked for in an instance whose three children all have that
    // name.
    IVDBInstance *const other = instance("o", ELABORATED);
    IVDBNet *const net = netOf(database->getRoot(ELABORATED), "y");
    database->findDrivingClockDomains(other, net, ELABORATED);
    const auto answers = database->elaboratedInstanceCache();
    ASSERT_EQ(answers.size(), 1U);
    EXPECT_EQ(answers[0].first, other->getSubInstances().at(0));
}

TEST_F(ElaboratedTrace, RecordsNoAnswerForAUserInstanceThatAnOperatorIsNamedLike)
{
    withCells(R"(
        module child(in ck, d, out q) r: DFF(clk=ck, d=d, q=q) end
        module top(in clk, other, d)
            u: child(ck=other, d=d, q=inner)
            r: DFF(clk=clk, d=d, q=q)
            u: INV(a=q, o=y)
        end)");
    EXPECT_EQ(clockOf("y"), "clk");
    EXPECT_TRUE(database->elaboratedInstanceCache().empty()) << "the first u is no operator";
    IVDBInstance *const child = instance("u", ELABORATED);
    EXPECT_EQ(nameOf(database->findDrivingClockDomains(child, netOf(child, "q"), ELABORATED)), "other");
}

TEST_F(ElaboratedTrace, RecordsNoAnswerForAUserInstanceThatIsNamedLikeTheDriverOfANetOfAnotherModule)
{
    withCells(R"(
        module child(in ck, d, out q) r: DFF(clk=ck, d=d, q=q) end
        module other(in ck, d, out q) u: child(ck=ck, d=d, q=q) end
        module top(in clk, late, d)
            r: DFF(clk=clk, d=d, q=q)
            u: INV(a=q, o=y)
            o: other(ck=late, d=d, q=z)
        end)");
    IVDBInstance *const other = instance("o", ELABORATED);
    database->findDrivingClockDomains(other, netOf(database->getRoot(ELABORATED), "y"), ELABORATED);
    EXPECT_TRUE(database->elaboratedInstanceCache().empty());
    EXPECT_EQ(clockOf("z"), "late");
}

TEST_F(ElaboratedTrace, TakesTheFirstOfANameAmongManyInACallersOwnClassToo)
{
    std::string text = "module top(in clk, d, z) r: DFF(clk=clk, d=d, q=q)\n";
    for (int at = 0; at < 40; ++at) {
        text += "i" + std::to_string(at) + ": INV(a=q, o=n" + std::to_string(at) + ")\n";
    }
    withCells((text + "end").c_str());
    IVDBInstance *const root = database->getRoot(ELABORATED);
    class Listed : public kvr::netlistdb::VDBInstance {
      public:
        using VDBInstance::VDBInstance;
        const std::vector<IVDBInstance *> &getSubInstances() const override { return children; }
        std::vector<IVDBInstance *> children;
    };
    Listed listed(root->getModule(), nullptr);
    listed.children = root->getSubInstances();
    kvr::netlistdb::VDBInstance first(nullptr, root, copied("i7"));
    ASSERT_EQ(listed.children.at(8)->getName(), "i7");
    listed.children.at(3) = &first;
    EXPECT_EQ(nameOf(database->findDrivingClockDomains(&listed, netOf(root, "n7"), ELABORATED)), "clk");
    EXPECT_TRUE(database->elaboratedInstanceCache().empty()) << "the second i7 has nothing to do with it";
    EXPECT_EQ(nameOf(database->findDrivingClockDomains(&listed, netOf(root, "n9"), ELABORATED)), "clk");
    ASSERT_EQ(database->elaboratedInstanceCache().size(), 1U);
    EXPECT_EQ(database->elaboratedInstanceCache()[0].first, root->getSubInstances().at(10));
}

TEST_F(ElaboratedTrace, TakesTheFirstOfANameAmongManyWhateverACallerAdds)
{
    std::string text = "module many(in clk, d) r: DFF(clk=clk, d=d, q=q)\n";
    for (int at = 0; at < 40; ++at) {
        text += "i" + std::to_string(at % 20) + ": INV(a=q, o=n" + std::to_string(at) + ")\n";
    }
    withCells((text + "end module top(in clk, d) u: many(clk=clk, d=d) v: many(clk=clk, d=d) end").c_str());
    for (const char *path : {"u", "v"}) {
        IVDBInstance *const many = instance(path, ELABORATED);
        many->addSubInstance(new kvr::netlistdb::VDBInstance(nullptr, many, copied("u")));
        for (int at = 0; at < 40; ++at) {
            database->findDrivingClockDomains(many, netOf(many, "n" + std::to_string(at)), ELABORATED);
        }
        for (std::size_t at = 0; at < 20; ++at) {
            const auto answers = database->elaboratedInstanceCache();
            const auto isFirst = [&](const auto &answer) { return answer.first == many->getSubInstances().at(1 + at); };
            EXPECT_EQ(std::count_if(answers.begin(), answers.end(), isFirst), 1) << path << ' ' << at;
        }
    }
    EXPECT_EQ(database->elaboratedInstanceCache().size(), 40U);
}

TEST_F(ElaboratedTrace, SeesThatAWideCellWasRewiredBetweenTwoQueries)
{
    std::string wide = "module wide(in ck, d";
    std::string pins;
    for (int at = 0; at < 200; ++at) {
        wide += ", out q" + std::to_string(at);
        pins += ", q" + std::to_string(at) + "=n" + std::to_string(at);
    }
    wide += ") r: DFF(clk=ck, d=d, q=q150) s: DFF(clk=d, d=d, q=q160) end\n";
    withCells((wide + "module top(in clk, d) w: wide(ck=clk, d=d" + pins + ") end").c_str());
    EXPECT_EQ(clockOf("n150"), "clk");
    EXPECT_EQ(clockOf("n160"), "d");
    const Verific::Netlist *const top = copyOf(ELABORATED);
    Verific::Instance *const cell = top->GetInst("w");
    const Verific::Port *const from = cell->View()->GetPort("q150");
    const Verific::Port *const to = cell->View()->GetPort("q160");
    cell->Disconnect(from);
    cell->Disconnect(to);
    cell->Connect(from, top->GetNet("n160"));
    cell->Connect(to, top->GetNet("n150"));
    EXPECT_EQ(clockOf("n150"), "d");
    EXPECT_EQ(clockOf("n160"), "clk");
}

TEST_F(ElaboratedTrace, EndsAtAGenericCellWhoseItemHasNoOwnerWhateverElseWaits)
{
    withCells(R"(
        module top(in clk, d)
            r: DFF(clk=clk, d=d, q=q)
            inv: INV(a=q, o=n)
            and: AND(a=n, b=q, o=y)
        end)");
    IVDBInstance *const root = database->getRoot(ELABORATED);
    kvr::netlistdb::VDBInstance foreign(root->getModule(), nullptr);
    foreign.addSubInstance(new kvr::netlistdb::VDBInstance(nullptr, root, copied("r")));
    foreign.addSubInstance(new kvr::netlistdb::VDBInstance(nullptr, nullptr, copied("inv")));
    foreign.addSubInstance(new kvr::netlistdb::VDBInstance(nullptr, &foreign, copied("and")));
    EXPECT_EQ(nameOf(database->findDrivingClockDomains(&foreign, netOf(root, "n"), ELABORATED)), "none");
    EXPECT_TRUE(database->elaboratedInstanceCache().empty());
    EXPECT_EQ(nameOf(database->findDrivingClockDomains(&foreign, netOf(root, "y"), ELABORATED)), "none");
    EXPECT_TRUE(database->elaboratedInstanceCache().empty()) << "what a caller's own item stands for is not known";
    EXPECT_EQ(nameOf(database->findDrivingClockDomains(&foreign, netOf(root, "q"), ELABORATED)), "clk");
    EXPECT_EQ(clockOf("y"), "clk");
}

TEST_F(ElaboratedTrace, AnswersNothingAtARegisterWhoseItemHasNoOwner)
{
    withCells("module top(in clk, d) r: DFF(clk=clk, d=d, q=q) end");
    IVDBInstance *const root = database->getRoot(ELABORATED);
    kvr::netlistdb::VDBInstance foreign(root->getModule(), nullptr);
    foreign.addSubInstance(new kvr::netlistdb::VDBInstance(nullptr, nullptr, copied("r")));
    EXPECT_EQ(database->findDrivingClockDomains(&foreign, netOf(root, "q"), ELABORATED), nullptr);
}

TEST_F(ElaboratedTrace, StopsAtADriverWithoutItem)
{
    withCells(R"(
        module top(in clk, d)
            x: ?
            r: DFF(clk=clk, d=d, q=q)
            y: INV(a=q, o=n)
        end)");
    EXPECT_EQ(clockOf("q"), "none");
    EXPECT_EQ(clockOf("n"), "none");
}

} // namespace
} // namespace clock_test
