// Prints all that clock maps of random designs know of every net, "path/net -> answers", whatever the order in which
// the nets are asked. The argument decides on that order and on how the heap is stirred, and with it in which order the
// items lie in memory. The last line is a fingerprint of that order.

#include "tests/property/clockmap/RandomDesign.h"
#include "tests/unit/clock/Stirrer.h"

#include <netlistdb/analysis/ClockMap.h>

#include <cstdlib>
#include <iostream>
#include <map>
#include <sstream>

namespace {

using namespace clock_test;
using namespace kvr::netlistdb::analysis;

void addClocks(std::ostringstream &text, const ClockMap &map, const std::vector<ReachingClock> &clocks)
{
    for (const ReachingClock &each : clocks) {
        text << map.clocks()[each.clock].name << ':' << each.cells << ' ';
    }
}

void addChain(std::ostringstream &text, const std::vector<ChainStep> &steps)
{
    for (const ChainStep &step : steps) {
        text << step.netName << '(' << step.cell << ' ' << step.output << ' ' << step.input << ") ";
    }
}

std::string answersOf(const ClockMap &map, const IVDBInstance *instance, const IVDBNet *net)
{
    const LaunchClocks launch = map.launch(instance, net);
    const CaptureClocks capture = map.capture(instance, net);
    if (launch.clocks.empty() && launch.networks.empty() && capture.clocks.empty()) {
        return "none";
    }
    std::ostringstream text;
    addClocks(text, map, launch.clocks);
    text << "| ";
    addClocks(text, map, launch.networks);
    text << "| " << launch.reached << " | ";
    for (const CapturingClock &each : capture.clocks) {
        text << map.clocks()[each.clock].name << ':' << unsigned{each.roles} << ' ';
    }
    text << "| " << capture.reached << " | ";
    for (const ClockChain &chain : map.why(instance, net).clocks) {
        addChain(text, chain.data);
        addChain(text, chain.clockToRoot);
    }
    return text.str();
}

std::size_t print(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE type, std::mt19937 &random)
{
    const ClockMap map(database, type);
    for (const Clock &clock : map.clocks()) {
        std::cout << clock.name << ' ' << nameOf(clock.root) << ' ' << clock.registers << '\n';
    }
    const std::vector<IVDBInstance *> instances = treeOf(database.getRoot(type));
    std::vector<DesignDatabase::InstanceNet> pairs;
    for (IVDBInstance *instance : instances) {
        for (IVDBNet *net : netsOf(instance)) {
            pairs.emplace_back(instance, net);
        }
    }
    std::shuffle(pairs.begin(), pairs.end(), random);
    std::map<std::string, std::string> answers;
    for (const DesignDatabase::InstanceNet &pair : pairs) {
        answers[clock_test::nameOf(pair)] = answersOf(map, pair.first, pair.second);
    }
    for (const auto &[name, answer] : answers) {
        std::cout << name << " -> " << answer << '\n';
    }
    return orderOf(instances);
}

} // namespace

int main(int argc, char **argv)
{
    const unsigned argument = argc > 1 ? static_cast<unsigned>(std::strtoul(argv[1], nullptr, 10)) : 0;
    Stirrer stirrer(argument);
    std::mt19937 random(argument);
    std::size_t fingerprint = 0;
    for (unsigned seed = 1; seed <= 40; ++seed) {
        for (const auto type : {POST_MAP, ELABORATED}) {
            const testsupport::LibsetGuard guard;
            const clockmap_test::RandomDesign design(seed, type == ELABORATED);
            DesignDatabase database(true);
            stirrer.stir();
            type == ELABORATED ? database.parseElaboratedNetlist(design.top())
                               : database.parsePostMapNetlist(design.top());
            std::cout << "design " << seed << '\n';
            fingerprint = fingerprint * 1000003 + print(database, type, random);
        }
    }
    std::cout << fingerprint << '\n';
    return 0;
}
