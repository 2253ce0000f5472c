#include "analysis/Components.h"

#include <algorithm>

namespace kvr::netlistdb::analysis {

// Tarjan's algorithm without recursion: chains of logic may be a million cells long.
Components::Components(const SignalGraph &graph)
{
    struct Open {
        std::uint32_t node;
        std::uint32_t edge;
    };
    constexpr std::uint32_t FINISHED = NONE - 1;
    const std::uint32_t count = graph.nodeCount();
    std::vector<std::uint32_t> lowest(count, NONE); // NONE: not met; FINISHED: in a component
    std::vector<Open> open;
    std::vector<std::uint32_t> waiting;
    std::vector<std::uint32_t> met(count);
    std::uint32_t next = 0;
    nodes.reserve(count);
    first.push_back(0);
    const auto enter = [&](std::uint32_t node) {
        met[node] = lowest[node] = next++;
        waiting.push_back(node);
        open.push_back({node, graph.firstEdge(node)});
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
                std::uint32_t member = NONE;
                do {
                    member = waiting.back();
                    waiting.pop_back();
                    lowest[member] = FINISHED;
                    nodes.push_back(member);
                } while (member != node);
                first.push_back(static_cast<std::uint32_t>(nodes.size()));
            } else if (!open.empty()) {
                lowest[open.back().node] = std::min(lowest[open.back().node], lowest[node]);
            }
        }
    }
}

} // namespace kvr::netlistdb::analysis
