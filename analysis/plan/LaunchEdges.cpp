#include "analysis/plan/LaunchEdges.h"

#include "analysis/plan/CellInputs.h"

#include <netlistdb/analysis/Clocks.h>

namespace kvr::netlistdb::analysis::plan {

using namespace probe;

namespace {

/// In front of a clock pin; inverters may drive each other in a ring.
constexpr unsigned MOST_INVERTERS = 64;

std::uint8_t edgeOf(const BitGraph &graph, const Node &node)
{
    bool isFalling = graph.partOf(node).has(PART_FALLING);
    Signal clock = graph.inputsOf(node)[0];
    for (unsigned steps = 0; steps < MOST_INVERTERS && graph.drivers[clock] != NONE; ++steps) {
        const Node &driver = graph.nodes[graph.drivers[clock]];
        if (!isInverter(graph.partOf(driver))) {
            break;
        }
        isFalling = !isFalling;
        clock = graph.inputsOf(driver)[0];
    }
    return isFalling ? EDGE_FALL : EDGE_RISE;
}

/// The parts of logic that each wire goes into.
Lists<std::uint32_t> logicBehind(const BitGraph &graph)
{
    std::vector<std::vector<std::uint32_t>> users(graph.signalCount);
    for (std::uint32_t at = 0; at < graph.nodes.size(); ++at) {
        if (graph.partOf(graph.nodes[at]).isLogic()) {
            for (const Signal input : graph.inputsOf(graph.nodes[at])) {
                if (input >= FIRST_SIGNAL) {
                    users[input].push_back(at);
                }
            }
        }
    }
    Lists<std::uint32_t> lists;
    for (const std::vector<std::uint32_t> &list : users) {
        lists.addList(list);
    }
    return lists;
}

} // namespace

std::vector<std::uint8_t> launchEdges(const BitGraph &graph)
{
    std::vector<std::uint8_t> edges(graph.signalCount);
    std::vector<Signal> waiting;
    const auto add = [&](const Node &node, std::uint8_t more) {
        for (const Signal output : graph.outputsOf(node)) {
            if ((edges[output] | more) != edges[output]) {
                edges[output] |= more;
                waiting.push_back(output);
            }
        }
    };
    for (const Node &node : graph.nodes) {
        if (graph.partOf(node).isClocked()) {
            add(node, edgeOf(graph, node));
        }
    }
    const Lists<std::uint32_t> users = logicBehind(graph);
    while (!waiting.empty()) {
        const Signal signal = waiting.back();
        waiting.pop_back();
        for (const std::uint32_t node : users[signal]) {
            add(graph.nodes[node], edges[signal]);
        }
    }
    return edges;
}

} // namespace kvr::netlistdb::analysis::plan
