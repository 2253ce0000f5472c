#include "tests/property/clockmap/ReferenceMap.h"
#include "tests/support/LibsetGuard.h"
#include "tests/support/RandomInputs.h"

#include <netlistdb/analysis/ClockMap.h>
#include <netlistdb/netlistdb.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <memory>
#include <sstream>

using namespace kvr::netlistdb;
using namespace kvr::netlistdb::analysis;

namespace clockmap_test {
namespace {

/// The answers of a map for one net, as text.
std::string launchText(const ClockMap &map, const LaunchClocks &launch)
{
    std::ostringstream text;
    for (const ReachingClock &each : launch.clocks) {
        text << map.clocks()[each.clock].name << ':' << each.cells << ' ';
    }
    text << "| ";
    for (const ReachingClock &each : launch.networks) {
        text << map.clocks()[each.clock].name << ':' << each.cells << ' ';
    }
    text << "| " << launch.reached;
    return text.str();
}

void addNearestFirst(std::ostringstream &text, const std::map<std::string, unsigned> &clocks)
{
    std::vector<std::pair<unsigned, std::string>> sorted;
    for (const auto &[clock, cells] : clocks) {
        sorted.emplace_back(cells, clock);
    }
    std::sort(sorted.begin(), sorted.end());
    for (const auto &[cells, clock] : sorted) {
        text << clock << ':' << cells << ' ';
    }
}

std::string launchText(const ReferenceMap::Launch &launch)
{
    std::ostringstream text;
    addNearestFirst(text, launch.clocks);
    text << "| ";
    addNearestFirst(text, launch.networks);
    text << "| " << launch.flags;
    return text.str();
}

std::string captureText(const ClockMap &map, const CaptureClocks &capture)
{
    std::ostringstream text;
    for (const CapturingClock &each : capture.clocks) {
        text << map.clocks()[each.clock].name << ':' << unsigned{each.roles} << ' ';
    }
    text << "| " << capture.reached;
    return text.str();
}

std::string captureText(const ReferenceMap::Capture &capture)
{
    std::ostringstream text;
    for (const auto &[clock, roles] : capture.clocks) {
        text << clock << ':' << roles << ' ';
    }
    text << "| " << capture.flags;
    return text.str();
}

std::string fullName(const IVDBInstance *instance, const IVDBNet *net)
{
    const std::string path = instance->getPath();
    return path + (path.empty() ? "" : "/") + net->getName();
}

/// One random design, imported and mapped.
class Mapped {
  public:
    Mapped(unsigned seed, bool elaborated)
        : design(seed, elaborated),
          source(elaborated ? IDesignDatabase::SOURCE_ELABORATED : IDesignDatabase::SOURCE_POST_MAP)
    {
        elaborated ? database.parseElaboratedNetlist(design.top()) : database.parsePostMapNetlist(design.top());
        map = std::make_unique<ClockMap>(database, source);
    }

    /// Every net of every instance of the tree.
    template <typename Visit> void forEachNet(Visit visit)
    {
        std::deque<IVDBInstance *> pending{database.getRoot(source)};
        for (; !pending.empty(); pending.pop_front()) {
            IVDBInstance *const instance = pending.front();
            pending.insert(pending.end(), instance->getSubInstances().begin(), instance->getSubInstances().end());
            for (const bool fromBuses : {true, false}) {
                for (IVDBNet *net : instance->getModule()->getNets(fromBuses)) {
                    visit(instance, net);
                }
            }
        }
    }

    testsupport::LibsetGuard guard;
    RandomDesign design;
    IDesignDatabase::SOURCE_TYPE source;
    DesignDatabase database{true};
    std::unique_ptr<ClockMap> map;
};

/// Every link of a chain is one of the netlist.
void checkSteps(const ReferenceMap &reference, const std::vector<ChainStep> &steps, unsigned cells)
{
    unsigned passed = 0;
    for (std::size_t step = 0; step < steps.size(); ++step) {
        const bool isLast = step + 1 == steps.size();
        ASSERT_EQ(isLast, steps[step].kind == StepKind::End || steps[step].kind == StepKind::Register);
        if (!isLast) {
            ASSERT_TRUE(reference.isStep(reference.find(steps[step].netName), reference.find(steps[step + 1].netName)));
            passed += steps[step].kind == StepKind::Cell ? 1 : 0;
        }
    }
    ASSERT_EQ(passed, cells);
}

void checkProof(const Mapped &mapped, const ReferenceMap &reference, const LaunchClocks &launch,
                const LaunchProof &proof, const std::string &name)
{
    ASSERT_EQ(proof.clocks.size(), launch.clocks.size());
    for (std::size_t at = 0; at < proof.clocks.size(); ++at) {
        const ClockChain &chain = proof.clocks[at];
        ASSERT_EQ((ReachingClock{chain.clock, chain.cells}), launch.clocks[at]);
        ASSERT_EQ(chain.data.front().netName, name);
        ASSERT_NO_FATAL_FAILURE(checkSteps(reference, chain.data, chain.cells));
        ASSERT_EQ(chain.data.back().kind, StepKind::Register);
        const std::vector<ChainStep> &clock = chain.clockToRoot;
        for (std::size_t step = 0; step + 1 < clock.size(); ++step) {
            ASSERT_TRUE(reference.isStep(reference.find(clock[step].netName), reference.find(clock[step + 1].netName)));
        }
        ASSERT_EQ(clock.back().netName, mapped.map->clocks()[chain.clock].name);
        ASSERT_EQ(reference.names()[reference.electrical(reference.find(clock.front().netName)).node],
                  clock.back().netName);
    }
    ASSERT_EQ(proof.networks.size(), launch.networks.size());
    for (std::size_t at = 0; at < proof.networks.size(); ++at) {
        const ClockChain &chain = proof.networks[at];
        ASSERT_EQ((ReachingClock{chain.clock, chain.cells}), launch.networks[at]);
        ASSERT_NO_FATAL_FAILURE(checkSteps(reference, chain.data, chain.cells));
        ASSERT_EQ(chain.data.back().netName, mapped.map->clocks()[chain.clock].name);
    }
    std::uint32_t ends = 0;
    for (const EndChain &end : proof.ends) {
        ASSERT_EQ(ends & end.end, 0U);
        ends |= end.end;
        ASSERT_EQ(end.data.front().netName, name);
        ASSERT_EQ(reference.launch(reference.find(end.data.back().netName)).flags & end.end, end.end);
    }
    ASSERT_EQ(ends, launch.reached);
}

void compare(unsigned seed, bool elaborated)
{
    SCOPED_TRACE("seed " + std::to_string(seed) + (elaborated ? ", elaborated" : ", post-map"));
    Mapped mapped(seed, elaborated);
    const ReferenceMap reference(mapped.design);
    const ClockMap &map = *mapped.map;

    std::map<std::string, std::string> clocks;
    for (const Clock &clock : map.clocks()) {
        clocks[clock.name] =
            std::to_string(clock.registers) + ' ' + std::to_string(clock.edges) + ' ' + nameOf(clock.root);
    }
    std::map<std::string, std::string> expected;
    for (const auto &[name, clock] : reference.clocks()) {
        expected[name] = std::to_string(clock.registers) + ' ' + std::to_string(clock.edges) + ' ' + clock.root;
    }
    ASSERT_EQ(clocks, expected);

    std::vector<std::uint64_t> launched(map.clocks().size());
    mapped.forEachNet([&](IVDBInstance *instance, IVDBNet *net) {
        if (::testing::Test::HasFatalFailure()) {
            return;
        }
        const std::string name = fullName(instance, net);
        SCOPED_TRACE(name);
        const ReferenceMap::Node node = reference.find(name);
        const LaunchClocks launch = map.launch(instance, net);
        ASSERT_EQ(launchText(map, launch), launchText(reference.launch(node)));
        ASSERT_EQ(captureText(map, map.capture(instance, net)), captureText(reference.capture(node)));
        const ElectricalNet electrical = map.electrical(instance, net);
        const ReferenceMap::Root root = reference.electrical(node);
        if (electrical.instance != nullptr) {
            ASSERT_EQ(fullName(electrical.instance, electrical.net), reference.names()[root.node]);
        }
        ASSERT_EQ(electrical.inverted, root.inverted);
        ASSERT_EQ(nameOf(electrical.root), reference.kindOf(root.node));
        ASSERT_EQ(electrical.clock.has_value(), reference.clocks().count(reference.names()[root.node]) != 0);
        ASSERT_NO_FATAL_FAILURE(checkProof(mapped, reference, launch, map.why(instance, net), name));
        for (const ReachingClock &each : launch.clocks) {
            ++launched[each.clock];
        }
    });
    if (elaborated) {
        ASSERT_EQ(map.countNets().launched, launched);
    }
}

TEST(ClockMapProperty, EveryAnswerOnRandomElaboratedDesignsIsThatOfTheUnfoldedReference)
{
    for (unsigned seed = 0; seed < testsupport::randomInputs(1000); ++seed) {
        ASSERT_NO_FATAL_FAILURE(compare(seed, true));
    }
}

TEST(ClockMapProperty, EveryAnswerOnRandomPostMapDesignsIsThatOfTheUnfoldedReference)
{
    for (unsigned seed = 0; seed < testsupport::randomInputs(1000); ++seed) {
        ASSERT_NO_FATAL_FAILURE(compare(seed, false));
    }
}

} // namespace
} // namespace clockmap_test
