// Memory that runs out at any moment of a clock query: std::bad_alloc passes, and the database answers as before.

#include "ClockTest.h"

#include "tests/support/failing_allocator/FailingAllocator.h"

#include <netlistdb/VDBLiveItems.h>

namespace clock_test {
namespace {

using testsupport::failAllocation;
using testsupport::Outcome;

// A divided clock, logic with a loop and with a fan-in that meets again, registers in two modules. No net hangs on two
// clocks: which of them answers depends on what was asked before.
constexpr const char *ELABORATED_DESIGN = R"(
    register DFF(in clk, d, out q) clock=clk end
    operator ADD(in a, b, out o) end
    operator INV(in a, out o) end
    module stage(in ck, d, out q)
        r: DFF(clk=ck, d=d, q=s)
        i: INV(a=s, o=t)
        a: ADD(a=t, b=s, o=q)
    end
    module top(in clk, d, out q)
        div: DFF(clk=clk, d=nhalf, q=half)
        inv: INV(a=half, o=nhalf)
        u1: stage(ck=clk, d=d, q=q1)
        u2: stage(ck=half, d=q1, q=q2)
        x1: ADD(a=q2, b=loop, o=sum)
        x2: ADD(a=sum, b=q2, o=loop)
        out: INV(a=loop, o=q)
    end)";

constexpr const char *POST_MAP_DESIGN = R"(
    module top(in clk, d, out q)
        buffer: KVR_GBUFCE(I=clk, O=gclk)
        f1: KVR_FF(C=gclk, D=d, Q=q1)
        f2: KVR_FF(C=q1, D=d, Q=q2)
        l1: KVR_LUT2(I0=q2, I1=loop, O=sum)
        l2: KVR_LUT2(I0=sum, I1=q2, O=loop)
        l3: KVR_LUT2(I0=loop, I1=sum, O=q)
    end)";

struct Query {
    IDesignDatabase::SOURCE_TYPE type;
    const char *design;
    const char *path; ///< of the instance in which the net is seen
    const char *net;
    const char *clock;
};

class InterruptedClockQuery : public testing::TestWithParam<Query> {
  protected:
    static void import(DesignDatabase &database)
    {
        Verific::Netlist *top = testsupport::netlistFromText(GetParam().design);
        ASSERT_TRUE(GetParam().type == ELABORATED ? database.parseElaboratedNetlist(top)
                                                  : database.parsePostMapNetlist(top));
    }
    static std::string ask(DesignDatabase &database)
    {
        IVDBInstance *instance = instanceAt(database.getRoot(GetParam().type), GetParam().path);
        return nameOf(database.findDrivingClockDomains(instance, netOf(instance, GetParam().net), GetParam().type));
    }
    static std::string askOfEveryNet(DesignDatabase &database)
    {
        std::string answers;
        for (IVDBInstance *instance : treeOf(database.getRoot(GetParam().type))) {
            for (IVDBNet *net : netsOf(instance)) {
                answers += instance->getPath() + '/' + net->getName() + ' ' +
                           nameOf(database.findDrivingClockDomains(instance, net, GetParam().type)) + '\n';
            }
        }
        return answers;
    }
};

TEST_P(InterruptedClockQuery, LeavesCachesThatAnswerAsIfNothingHadHappened)
{
    const auto before = kvr::netlistdb::liveItemCounts();
    const std::string expected = [] {
        testsupport::LibsetGuard guard;
        DesignDatabase database(true);
        import(database);
        EXPECT_EQ(ask(database), GetParam().clock);
        return askOfEveryNet(database);
    }();
    int failures = 0;
    Outcome outcome = Outcome::THREW;
    for (long number = 0; outcome != Outcome::NOT_REACHED; ++number) {
        testsupport::LibsetGuard guard;
        DesignDatabase database(true);
        import(database);
        const std::size_t domains = database.listAllClockDomains(GetParam().type).size();
        IVDBInstance *instance = instanceAt(database.getRoot(GetParam().type), GetParam().path);
        IVDBNet *net = netOf(instance, GetParam().net);
        const IClockDomain *answer = nullptr;
        outcome =
            failAllocation(number, [&] { answer = database.findDrivingClockDomains(instance, net, GetParam().type); });
        if (outcome == Outcome::THREW) {
            ++failures;
        } else {
            ASSERT_EQ(nameOf(answer), GetParam().clock) << "allocation " << number;
        }
        ASSERT_EQ(ask(database), GetParam().clock) << "allocation " << number;
        ASSERT_EQ(askOfEveryNet(database), expected) << "allocation " << number;
        ASSERT_EQ(database.listAllClockDomains(GetParam().type).size(), domains) << "allocation " << number;

        ASSERT_TRUE(database.reset(GetParam().type));
        ASSERT_EQ(kvr::netlistdb::liveItemCounts(), before) << "allocation " << number;
        ASSERT_NO_FATAL_FAILURE(import(database));
        ASSERT_EQ(askOfEveryNet(database), expected) << "allocation " << number;
    }
    EXPECT_GT(failures, 0);
    EXPECT_EQ(kvr::netlistdb::liveItemCounts(), before);
}

INSTANTIATE_TEST_SUITE_P(ClockAllocationFailure, InterruptedClockQuery,
                         testing::Values(Query{ELABORATED, ELABORATED_DESIGN, "", "q", "half"},
                                         Query{ELABORATED, ELABORATED_DESIGN, "u2", "q", "half"},
                                         Query{ELABORATED, ELABORATED_DESIGN, "", "half", "clk"},
                                         Query{ELABORATED, ELABORATED_DESIGN, "", "d", "none"},
                                         Query{POST_MAP, POST_MAP_DESIGN, "", "q", "q1"},
                                         Query{POST_MAP, POST_MAP_DESIGN, "", "sum", "q1"},
                                         Query{POST_MAP, POST_MAP_DESIGN, "", "q1", "clk"},
                                         Query{POST_MAP, POST_MAP_DESIGN, "", "d", "none"}));

} // namespace
} // namespace clock_test
