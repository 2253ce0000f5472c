#pragma once

#include "analysis/Lists.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis {

/// The strongly connected components of a graph, each behind all that it depends on. A component of several nodes, or
/// of one that depends on itself, is a combinational loop.
struct Components {
    /// @p graph has nodeCount(), and for each node the edges firstEdge() to endEdge(), which lead to before().
    template <typename Graph> explicit Components(const Graph &graph);

    std::vector<std::uint32_t> nodes; ///< component by component
    std::vector<std::uint32_t> first; ///< place of the first node of each component, and the number of nodes

    std::uint32_t count() const { return static_cast<std::uint32_t>(first.size()) - 1; }
    Span<std::uint32_t> operator[](std::uint32_t component) const
    {
        return {nodes.data() + first[component], nodes.data() + first[component + 1]};
    }
};

// Tarjan's algorithm without recursion: chains of logic may be a million cells long.
template <typename Graph> Components::Components(const Graph &graph)
{
    struct Open {
        std::uint32_t node;
        std::uint32_t edge;
    };
    constexpr std::uint32_t FINISHED = NONE - 1;
    const std::uint32_t count = graph.nodeCount();
    std::vector<std::uint32_t> lowest(count, NONE); // NONE: not met; FINISHED: in a component
    std::vector<std::uint32_t> met(count);
    std::vector<std::uint32_t> waiting;
    std::vector<Open> open;
    std::uint32_t next = 0;
    nodes.reserve(count);
    first.push_back(0);
    const auto enter = [&](std::uint32_t node) {
        met[node] = lowest[node] = next++;
        waiting.push_back(node);
        open.push_back({node, graph.firstEdge(node)});
    };
    const auto leave = [&](std::uint32_t node) {
        std::uint32_t member = NONE;
        do {
            member = waiting.back();
            waiting.pop_back();
            lowest[member] = FINISHED;
            nodes.push_back(member);
        } while (member != node);
        first.push_back(static_cast<std::uint32_t>(nodes.size()));
    };
    for (std::uint32_t start = 0; start < count; ++start) {
        if (lowest[start] != NONE) {
            continue;
        }
        enter(start);
        while (!open.empty()) {
            Open &top = open.back();
            if (top.edge < graph.endEdge(top.node)) {
                const std::uint32_t before = graph.before(top.edge++);
                if (lowest[before] == NONE) {
                    enter(before);
                } else if (lowest[before] != FINISHED) {
                    lowest[top.node] = std::min(lowest[top.node], met[before]);
                }
                continue;
            }
            const std::uint32_t node = top.node;
            open.pop_back();
            if (lowest[node] == met[node]) {
                leave(node);
            } else {
                // What the node reaches, the one that it was entered from reaches too.
                lowest[open.back().node] = std::min(lowest[open.back().node], lowest[node]);
            }
        }
    }
}

} // namespace kvr::netlistdb::analysis
