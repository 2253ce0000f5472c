#include "tests/unit/clock/ClockTest.h"

#include <netlistdb/analysis/CrossProbe.h>
#include <netlistdb/netlistdb.h>

#include <memory>
#include <string>

namespace analysis_test {
namespace {

using clock_test::ELABORATED;
using clock_test::POST_MAP;
using namespace kvr::netlistdb;
using namespace kvr::netlistdb::analysis;

/// Cells that both netlists are made of.
const std::string CELLS = R"(
    operator $not(in A, out Y) end
    operator $and(in A, B, out Y) end
    operator $xor(in A, B, out Y) end
    operator $dff(in CLK, D, out Q) end
    operator $sdff(in CLK, SRST, D, out Q) end
    operator $_SDFF_PP0_(in C, D, R, out Q) end
    operator $_SDFF_PP1_(in C, D, R, out Q) end
    operator $_DFF_P_(in C, D, out Q) end
    operator $_AND_(in A, B, out Y) end
    operator $_ANDNOT_(in A, B, out Y) end
    operator $_OR_(in A, B, out Y) end
    operator $_XOR_(in A, B, out Y) end
    operator $_NOT_(in A, out Y) end
)";

class CrossProbeTest : public clock_test::ClockTest {
  protected:
    void load(const std::string &rtl, const std::string &mapped)
    {
        elaborated((CELLS + rtl).c_str());
        postMap((CELLS + mapped).c_str());
        probe = std::make_unique<CrossProbe>(*database);
    }

    static IVDBNet *netOf(IVDBInstance *instance, const std::string &name)
    {
        for (IVDBNet *net : instance->getModule()->getNets(false)) {
            if (net->getName() == name) {
                return net;
            }
        }
        ADD_FAILURE() << "no net " << name;
        return nullptr;
    }

    static std::string text(const ProbeMatch &match)
    {
        std::string result = nameOf(match.grade);
        if (match.reason != GoneReason::None) {
            result.append(" ").append(nameOf(match.reason));
        }
        for (const ProbeTarget &target : match.targets) {
            result.append(target.inverted ? " ~" : " ").append(target.net->getName());
        }
        return result;
    }

    std::string found(const std::string &net) const
    {
        IVDBInstance *const root = database->getRoot(ELABORATED);
        return text(probe->find(root, netOf(root, net)));
    }
    std::string foundBack(const std::string &net) const
    {
        IVDBInstance *const root = database->getRoot(POST_MAP);
        return text(probe->findBack(root, netOf(root, net)));
    }

    std::unique_ptr<CrossProbe> probe;
};

TEST_F(CrossProbeTest, ARegisterIsFoundByItsBehaviourWhateverItIsCalled)
{
    load(R"(module top(in clk, rst, a, b, out y)
                g: $xor(A=a, B=b, Y=d)
                r: $sdff(CLK=clk, SRST=rst, D=d, Q=q) #SRST_VALUE=0
                o: $and(A=q, B=b, Y=y)
            end)",
         R"(module top(in clk, rst, a, b, out y)
                g: $_XOR_(A=b, B=a, Y=n1)
                r: $_SDFF_PP0_(C=clk, D=n1, R=rst, Q=n2)
                o: $_AND_(A=n2, B=b, Y=y)
            end)");
    EXPECT_EQ(found("q"), "register n2");
    EXPECT_EQ(found("d"), "structural n1");
    EXPECT_EQ(found("y"), "exact y");
    EXPECT_EQ(foundBack("n2"), "register q");
}

TEST_F(CrossProbeTest, ARegisterThatIsStoredInvertedIsSaidToBe)
{
    load(R"(module top(in clk, rst, a, b, out y)
                r: $sdff(CLK=clk, SRST=rst, D=a, Q=q) #SRST_VALUE=0
                o: $and(A=q, B=b, Y=y)
            end)",
         R"(module top(in clk, rst, a, b, out y)
                g: $_NOT_(A=a, Y=n1)
                r: $_SDFF_PP1_(C=clk, D=n1, R=rst, Q=n2)
                o: $_ANDNOT_(A=b, B=n2, Y=y)
            end)");
    EXPECT_EQ(found("q"), "register ~n2");
}

TEST_F(CrossProbeTest, ANameThatIsContradictedIsNoMatch)
{
    load(R"(module top(in clk, rst, a, b, out y)
                g: $xor(A=a, B=b, Y=d)
                r: $sdff(CLK=clk, SRST=rst, D=d, Q=y) #SRST_VALUE=0
            end)",
         R"(module top(in clk, rst, a, b, out y)
                f: $_OR_(A=a, B=b, Y=d)
                g: $_XOR_(A=a, B=b, Y=n1)
                r: $_SDFF_PP0_(C=clk, D=n1, R=rst, Q=y)
                s: $_DFF_P_(C=clk, D=d, Q=n2)
            end)");
    EXPECT_EQ(found("d"), "structural n1");
    EXPECT_EQ(found("y"), "exact y");
}

TEST_F(CrossProbeTest, SharedRegistersAreMergedWithTheOneThatSurvived)
{
    load(R"(module top(in clk, rst, a, b, out y)
                r: $sdff(CLK=clk, SRST=rst, D=a, Q=q) #SRST_VALUE=0
                s: $sdff(CLK=clk, SRST=rst, D=a, Q=p) #SRST_VALUE=0
                g: $and(A=p, B=b, Y=d)
                o: $xor(A=q, B=d, Y=y)
            end)",
         R"(module top(in clk, rst, a, b, out y)
                r: $_SDFF_PP0_(C=clk, D=a, R=rst, Q=q)
                o: $_ANDNOT_(A=q, B=b, Y=y)
            end)");
    EXPECT_EQ(found("q"), "exact q");
    EXPECT_EQ(found("p"), "merged q");
    EXPECT_EQ(found("d"), "gone in-logic");
}

TEST_F(CrossProbeTest, WhatIsGoneHasAReason)
{
    load(R"(module top(in clk, rst, a, b, out y)
                n: $not(A=a, Y=m)
                z: $and(A=a, B=m, Y=ignored)
                c: $xor(A=a, B=a, Y=x)
                u: $xor(A=b, B=q, Y=unused)
                r: $sdff(CLK=clk, SRST=rst, D=a, Q=q) #SRST_VALUE=0
                k: $sdff(CLK=clk, SRST=rst, D=fixed, Q=fixed) #SRST_VALUE=1
                o: $and(A=q, B=fixed, Y=y)
            end)",
         R"(module top(in clk, rst, a, b, out y)
                r: $_SDFF_PP0_(C=clk, D=a, R=rst, Q=y)
            end)");
    EXPECT_EQ(found("fixed"), "gone constant");
    EXPECT_EQ(found("unused"), "gone unused");
}

TEST_F(CrossProbeTest, TwoSourcesAreNeededAndMustStay)
{
    elaborated((CELLS + "module top(in a, out y) n: $not(A=a, Y=y) end").c_str());
    EXPECT_THROW(CrossProbe{*database}, std::invalid_argument);
    postMap((CELLS + "module top(in a, out y) n: $_NOT_(A=a, Y=y) end").c_str());
    probe = std::make_unique<CrossProbe>(*database);
    EXPECT_EQ(found("y"), "exact y ~a");
    IVDBInstance *const root = database->getRoot(ELABORATED);
    EXPECT_THROW((void)probe->find(root, nullptr), std::invalid_argument);
    IVDBNet *const net = netOf(root, "y");
    ASSERT_TRUE(database->reset(POST_MAP));
    EXPECT_THROW((void)probe->find(root, net), std::logic_error);
}

} // namespace
} // namespace analysis_test
