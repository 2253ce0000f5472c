// One netlist imported as both sources, imports that fail over a loaded source, and what is left of each afterwards.

#include "ClockTest.h"

#include <netlistdb/VDBClockDomain.h>

#include <algorithm>
#include <stdexcept>

namespace clock_test {
namespace {

using Pair = DesignDatabase::InstanceNet;

class TwoSources : public ClockTest {
  protected:
    void import(IDesignDatabase::SOURCE_TYPE type, Verific::Netlist *netlist)
    {
        ASSERT_TRUE(type == POST_MAP ? database->parsePostMapNetlist(netlist)
                                     : database->parseElaboratedNetlist(netlist));
    }

    /// The clock of every net and every domain, by name.
    std::vector<std::string> answers(IDesignDatabase::SOURCE_TYPE type)
    {
        std::vector<std::string> lines;
        for (IVDBInstance *each : treeOf(database->getRoot(type))) {
            for (IVDBNet *net : netsOf(each)) {
                lines.push_back(nameOf(Pair(each, net)) + " -> " +
                                nameOf(database->findDrivingClockDomains(each, net, type)));
            }
        }
        const Names names = clocks(type); // by name: the table is in the order of addresses
        lines.insert(lines.end(), names.begin(), names.end());
        for (const IClockDomain *domain : database->listAllClockDomains(type)) {
            // Every record leads to live items of its own source.
            const std::vector<IVDBNet *> nets = netsOf(domain->getInstance());
            EXPECT_NE(std::find(nets.begin(), nets.end(), domain->getNet()), nets.end()) << domain->getName();
        }
        return lines;
    }
};

// Clocks made inside modules, so that their records lead to nets of shared modules.
constexpr const char *SHARED = R"(
    register DFF(in clk, d, out q) clock=clk end
    operator INV(in a, out o) end
    module divider(in ck, out half) r: DFF(clk=ck, d=n, q=half) i: INV(a=half, o=n) s: DFF(clk=half, d=n, q=quarter) end
    module stage(in ck, d, out q) v: divider(ck=ck, half=own) r: DFF(clk=own, d=d, q=t) i: INV(a=t, o=q) end
    module top(in clk, d, out q)
        u: stage(ck=clk, d=d, q=x)
        f: KVR_FF(C=clk, D=x, Q=y)
        i: INV(a=y, o=q)
    end)";

TEST_F(TwoSources, OfOneNetlistEachKeepItsAnswersWhenTheOtherIsReset)
{
    for (const auto first : {ELABORATED, POST_MAP}) {
        for (const auto freed : {ELABORATED, POST_MAP}) {
            SCOPED_TRACE(std::to_string(first) + ' ' + std::to_string(freed));
            database = std::make_unique<DesignDatabase>(true);
            Verific::Netlist *const netlist = testsupport::netlistFromText(SHARED);
            const auto second = first == ELABORATED ? POST_MAP : ELABORATED;
            const auto kept = freed == ELABORATED ? POST_MAP : ELABORATED;
            import(first, netlist);
            import(second, netlist);
            const std::vector<std::string> before = answers(kept);
            const std::vector<IClockDomain *> domains = database->listAllClockDomains(kept);
            ASSERT_FALSE(domains.empty());
            answers(freed);
            ASSERT_TRUE(database->reset(freed));
            EXPECT_EQ(answers(kept), before);
            EXPECT_EQ(database->listAllClockDomains(kept), domains);
            import(freed, netlist);
            EXPECT_EQ(answers(kept), before);
        }
    }
}

TEST_F(TwoSources, OfOneNetlistAnswerAsEachAlone)
{
    Verific::Netlist *const netlist = testsupport::netlistFromText(SHARED);
    import(ELABORATED, netlist);
    import(POST_MAP, netlist);
    const std::vector<std::string> elaboratedAnswers = answers(ELABORATED);
    const std::vector<std::string> postMapAnswers = answers(POST_MAP);
    DesignDatabase *const both = database.release();
    for (const auto type : {ELABORATED, POST_MAP}) {
        database = std::make_unique<DesignDatabase>(true);
        import(type, testsupport::netlistFromText(SHARED));
        EXPECT_EQ(answers(type), type == ELABORATED ? elaboratedAnswers : postMapAnswers);
    }
    delete both;
}

/// The pair cache and the instance cache as they stand.
struct Caches {
    explicit Caches(DesignDatabase &database) : answers(database.elaboratedInstanceCache())
    {
        for (const auto &[domain, pairs] : database.drivingClockCache()) {
            sets[domain] = pairs.pairs();
        }
    }
    bool operator==(const Caches &other) const { return sets == other.sets && answers == other.answers; }
    std::map<IClockDomain *, std::vector<Pair>> sets;
    std::vector<std::pair<IVDBInstance *, IClockDomain *>> answers;
};

TEST_F(TwoSources, KeepTheCachesOfALoadedTreeWhenAnotherImportFailsOverIt)
{
    Verific::Netlist *const netlist = testsupport::netlistFromText(SHARED);
    const char *const refused[] = {"module bad() net d[99999999999] end",
                                   "module worse() net d[99999999999] end module below() w: worse() end"};
    for (const auto type : {ELABORATED, POST_MAP}) {
        for (const char *text : refused) {
            database = std::make_unique<DesignDatabase>(true);
            import(type, testsupport::netlistFromText(SHARED));
            const std::vector<std::string> before = answers(type);
            const Caches caches(*database);
            ASSERT_FALSE(type == ELABORATED ? caches.answers.empty() : caches.sets.empty());
            IVDBInstance *const root = database->getRoot(type);
            Verific::Netlist *const bad = testsupport::netlistFromText(text);
            EXPECT_THROW(import(type, bad), std::out_of_range);
            EXPECT_TRUE(Caches(*database) == caches);
            if (database->getRoot(type) == root) {
                EXPECT_EQ(answers(type), before);
            }
        }
    }
    static_cast<void>(netlist);
}

TEST_F(TwoSources, SeeRecordsThatAreMadeAfterAQuery)
{
    // 100 levels, through which a net that no register clocks is asked for before and after another pre-pass.
    std::string text = "register DFF(in clk, d, out q) clock=clk end\n"
                       "module m0(in d, out q) r: DFF(clk=d, d=d, q=q) end\n";
    for (int level = 1; level < 100; ++level) {
        const std::string number = std::to_string(level);
        text += "module m" + number + "(in d, out q) u: m" + std::to_string(level - 1) + "(d=d, q=q) end\n";
    }
    elaborated((text + "module top(in d, out q) u: m99(d=d, q=q) end").c_str());
    IVDBInstance *const root = database->getRoot(ELABORATED);
    IVDBNet *const net = netOf(root, "q");
    IClockDomain *const before = database->findDrivingClockDomains(root, net, ELABORATED);
    ASSERT_EQ(nameOf(before), "d");
    for (int more = 0; more < 20; ++more) {
        database->parseClkDomainElab(copyOf(ELABORATED));
        EXPECT_EQ(database->findDrivingClockDomains(root, net, ELABORATED),
                  database->listAllClockDomains(ELABORATED).front());
    }
}

} // namespace
} // namespace clock_test
