#include "tests/unit/clock/ClockTest.h"

#include <netlistdb/analysis/Clocks.h>
#include <netlistdb/analysis/NetFingerprints.h>
#include <netlistdb/netlistdb.h>

#include <memory>
#include <string>

namespace analysis_test {
namespace {

using clock_test::ELABORATED;
using clock_test::POST_MAP;
using namespace kvr::netlistdb;
using namespace kvr::netlistdb::analysis;

const std::string CELLS = R"(
    operator $not(in A, out Y) end
    operator $and(in A, B, out Y) end
    operator $xor(in A, B, out Y) end
    operator $dff(in CLK, D, out Q) end
    operator $adff(in CLK, ARST, D, out Q) end
)";

/// Fingerprints of one build after the other: they are compared as numbers.
class NetFingerprintsTest : public clock_test::ClockTest {
  protected:
    void load(const std::string &rtl)
    {
        prints.reset();
        elaborated((CELLS + rtl).c_str());
        prints = std::make_unique<NetFingerprints>(*database, ELABORATED);
    }

    IVDBInstance *root() const { return database->getRoot(ELABORATED); }
    NetFingerprint of(const std::string &net) const { return prints->of(root(), clock_test::netOf(root(), net)); }
    std::uint8_t edges(const std::string &net) const { return prints->edgesOf(root(), clock_test::netOf(root(), net)); }

    /// Names of the nets on the wires that were found, wires separated by "|".
    static std::string names(const std::vector<NetFingerprints::Wire> &wires)
    {
        std::string all;
        for (const NetFingerprints::Wire &wire : wires) {
            all += all.empty() ? "" : "|";
            for (std::size_t at = 0; at < wire.size(); ++at) {
                all += (at > 0 ? " " : "") + wire[at].net->getName();
            }
        }
        return all;
    }

    std::unique_ptr<NetFingerprints> prints;
};

const std::string BEFORE = R"(
    module top(in clk, d, e, out y)
      f: $dff(CLK=clk, D=x, Q=old_q)
      g: $xor(A=old_q, B=d, Y=x)
      h: $dff(CLK=clk, D=e, Q=other_q)
      i: $and(A=old_q, B=other_q, Y=y)
    end)";

TEST_F(NetFingerprintsTest, FindARegisterUnderItsNewNameByTheSignalsThatItIsMadeFrom)
{
    load(BEFORE);
    const NetFingerprint old = of("old_q");
    EXPECT_NE(old.near, 0U);
    // The cells have other names, too, and what it goes to is another thing.
    load(R"(
        module top(in clk, d, e, out y)
          k: $xor(A=new_q, B=d, Y=w)
          l: $dff(CLK=clk, D=w, Q=new_q)
          h: $dff(CLK=clk, D=e, Q=other_q)
          i: $xor(A=new_q, B=other_q, Y=y)
        end)");
    EXPECT_EQ(names(prints->findNear(old)), "new_q");
    EXPECT_EQ(names(prints->findDeep(old)), "new_q");
    EXPECT_TRUE(of("new_q").isOnly);
}

TEST_F(NetFingerprintsTest, DoNotFindARegisterThatComputesSomethingElse)
{
    load(BEFORE);
    const NetFingerprint old = of("old_q");
    for (const char *other : {"f: $dff(CLK=clk, D=x, Q=new_q) g: $and(A=new_q, B=d, Y=x)",
                              "f: $dff(CLK=clk, D=x, Q=new_q) g: $xor(A=new_q, B=e, Y=x)",
                              "f: $dff(CLK=e, D=x, Q=new_q) g: $xor(A=new_q, B=d, Y=x)",
                              "f: $adff(CLK=clk, ARST=e, D=x, Q=new_q) g: $xor(A=new_q, B=d, Y=x)"}) {
        SCOPED_TRACE(other);
        load(std::string("module top(in clk, d, e, out y) ") + other + " h: $not(A=new_q, Y=y) end");
        EXPECT_EQ(names(prints->findNear(old)), "");
        EXPECT_EQ(names(prints->findDeep(old)), "");
    }
}

TEST_F(NetFingerprintsTest, FindARegisterAmongOthersThatHaveNewNamesToo)
{
    const std::string chain = R"(
        module top(in clk, d, out y)
          f: $dff(CLK=clk, D=d, Q=a_q)
          g: $dff(CLK=clk, D=a_q, Q=b_q)
          h: $not(A=b_q, Y=y)
        end)";
    load(chain);
    const NetFingerprint old = of("b_q");
    load(R"(
        module top(in clk, d, out y)
          f: $dff(CLK=clk, D=d, Q=first_q)
          g: $dff(CLK=clk, D=first_q, Q=second_q)
          h: $not(A=second_q, Y=y)
        end)");
    EXPECT_EQ(names(prints->findNear(old)), "") << "its input has another name";
    EXPECT_EQ(names(prints->findDeep(old)), "second_q");
}

TEST_F(NetFingerprintsTest, TellTwinsFromNets)
{
    load(R"(
        module top(in clk, d, out y)
          f: $dff(CLK=clk, D=d, Q=a_q)
          g: $dff(CLK=clk, D=d, Q=b_q)
          h: $and(A=a_q, B=b_q, Y=y)
        end)");
    EXPECT_FALSE(of("a_q").isOnly);
    EXPECT_TRUE(of("y").isOnly);
    EXPECT_EQ(names(prints->findDeep(of("a_q"))), "a_q|b_q");
}

TEST_F(NetFingerprintsTest, AreNoneForConstantsAndForWhatNothingDrives)
{
    load(R"(
        module top(in clk, d, out y)
          f: $dff(CLK=clk, D=open, Q=y)
        end)");
    EXPECT_EQ(of("open").near, 0U);
    EXPECT_EQ(of("open").deep, 0U);
    EXPECT_EQ(names(prints->findDeep({})), "");
}

TEST_F(NetFingerprintsTest, SurviveALoopWithoutARegister)
{
    load(R"(
        module top(in clk, d, out y)
          f: $and(A=a, B=d, Y=b)
          g: $not(A=b, Y=a)
          h: $dff(CLK=clk, D=a, Q=y)
        end)");
    EXPECT_EQ(of("y").near, 0U);
    EXPECT_NE(of("y").deep, 0U);
}

TEST_F(NetFingerprintsTest, TellTheEdgesAtTheRootOfTheClock)
{
    load(R"(
        module top(in clk, d, out p, q, y, z)
          n: $not(A=clk, Y=clk_n)
          f: $dff(CLK=clk, D=d, Q=p)
          g: $dff(CLK=clk_n, D=d, Q=q)
          h: $not(A=q, Y=y)
          i: $and(A=p, B=y, Y=z)
        end)");
    EXPECT_EQ(edges("p"), EDGE_RISE);
    EXPECT_EQ(edges("q"), EDGE_FALL);
    EXPECT_EQ(edges("y"), EDGE_FALL) << "through logic";
    EXPECT_EQ(edges("z"), EDGE_RISE | EDGE_FALL);
    EXPECT_EQ(edges("d"), 0U);
}

TEST_F(NetFingerprintsTest, RefuseASourceThatIsGoneAndANetOfAnother)
{
    load(BEFORE);
    IVDBNet *const net = clock_test::netOf(root(), "old_q");
    EXPECT_THROW(prints->of(root(), nullptr), std::invalid_argument);
    EXPECT_THROW(NetFingerprints(*database, POST_MAP), std::invalid_argument);
    IVDBInstance *const instance = root();
    database->reset(ELABORATED);
    EXPECT_THROW(prints->of(instance, net), std::logic_error);
    EXPECT_THROW(prints->findDeep({}), std::logic_error);
}

} // namespace
} // namespace analysis_test
