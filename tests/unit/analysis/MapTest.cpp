#include "tests/unit/analysis/MapTest.h"

#include <netlistdb/IVDBInstance.h>

namespace analysis_test {

namespace analysis = kvr::netlistdb::analysis;

namespace {

std::string words(std::uint32_t flags, std::initializer_list<const char *> names)
{
    std::string text;
    std::uint32_t flag = 1;
    for (const char *name : names) {
        if ((flags & flag) != 0) {
            text.append(text.empty() ? "" : " ").append(name);
        }
        flag *= 2;
    }
    return text;
}

void addPart(std::string &text, const std::string &part)
{
    if (!part.empty()) {
        text.append(text.empty() ? "| " : " | ").append(part);
    }
}

} // namespace

std::string reachingText(std::uint32_t flags)
{
    return words(flags, {"port", "constant", "box", "latch", "undriven", "loop"});
}

void MapTest::elaboratedMap(const char *netlist)
{
    source = ELABORATED;
    elaborated(netlist);
    map = std::make_unique<ClockMap>(*database, source);
}

void MapTest::postMapMap(const char *netlist)
{
    source = POST_MAP;
    postMap(netlist);
    map = std::make_unique<ClockMap>(*database, source);
}

IVDBInstance *MapTest::instanceOf(const std::string &path) const
{
    return clock_test::instanceAt(database->getRoot(source), path);
}

IVDBNet *MapTest::netIn(const std::string &path, const std::string &net) const
{
    return clock_test::netOf(instanceOf(path), net);
}

std::string MapTest::launch(const std::string &net, const std::string &path) const
{
    const analysis::LaunchClocks launch = map->launch(instanceOf(path), netIn(path, net));
    std::string text;
    std::string networks;
    for (const analysis::ReachingClock &each : launch.clocks) {
        text.append(text.empty() ? "" : " ").append(map->clocks()[each.clock].name).append(":");
        text += std::to_string(each.cells);
    }
    for (const analysis::ReachingClock &each : launch.networks) {
        networks.append(networks.empty() ? "" : " ").append(map->clocks()[each.clock].name).append(":");
        networks += std::to_string(each.cells);
    }
    addPart(text, networks);
    addPart(text, reachingText(launch.reached));
    return text;
}

std::string MapTest::capture(const std::string &net, const std::string &path) const
{
    const analysis::CaptureClocks capture = map->capture(instanceOf(path), netIn(path, net));
    std::string text;
    for (const analysis::CapturingClock &each : capture.clocks) {
        std::string roles = words(each.roles, {"data", "enable", "reset"});
        for (char &c : roles) {
            c = c == ' ' ? '+' : c;
        }
        text.append(text.empty() ? "" : " ").append(map->clocks()[each.clock].name).append(":").append(roles);
    }
    addPart(text, words(capture.reached, {"port", "box", "latch", "clock-pin"}));
    return text;
}

std::string MapTest::electrical(const std::string &net, const std::string &path) const
{
    const analysis::ElectricalNet root = map->electrical(instanceOf(path), netIn(path, net));
    return std::string(analysis::nameOf(root.root)) + ' ' + clock_test::nameOf({root.instance, root.net}) +
           (root.inverted ? " inverted" : "") + (root.clock ? " (clock)" : "");
}

std::string MapTest::clocks() const
{
    std::string text;
    for (const Clock &clock : map->clocks()) {
        std::string edges = words(clock.edges, {"rise", "fall"});
        for (char &c : edges) {
            c = c == ' ' ? '+' : c;
        }
        text += clock.name + ' ' + analysis::nameOf(clock.root) + ' ' + edges + ' ' + std::to_string(clock.registers);
        for (const analysis::ClockId parent : clock.parents) {
            text += (parent == clock.parents.front() ? " <- " : " ") + map->clocks()[parent].name;
        }
        for (const std::string &name : clock.names) {
            text += " = " + name;
        }
        text += '\n';
    }
    return text;
}

} // namespace analysis_test
