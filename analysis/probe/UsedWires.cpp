#include "analysis/probe/UsedWires.h"

#include <algorithm>

namespace kvr::netlistdb::analysis::probe {

std::vector<bool> usedWires(const BitGraph &graph)
{
    std::vector<bool> isUsed(graph.signalCount, false);
    std::vector<Signal> open;
    const auto use = [&](Signal signal) {
        if (!isUsed[signal]) {
            isUsed[signal] = true;
            open.push_back(signal);
        }
    };
    for (const TopPort &port : graph.ports) {
        if (port.isOutput) {
            use(port.signal);
        }
    }
    for (const OpaqueCell &cell : graph.opaque) {
        for (const std::uint32_t net : graph.moduleOf(cell.occurrence).netsOf(cell.cell)) {
            use(graph.signalOf(cell.occurrence, net));
        }
    }
    std::vector<std::vector<std::uint32_t>> writers(graph.memories.size());
    for (std::uint32_t number = 0; number < graph.nodes.size(); ++number) {
        const Op op = graph.partOf(graph.nodes[number]).op;
        if (op == Op::MemoryWrite || op == Op::MemoryStart) {
            writers[graph.nodes[number].state].push_back(number);
        }
    }
    const auto useNode = [&](const Node &node) {
        const Part &part = graph.partOf(node);
        const Span<Signal> in = graph.inputsOf(node);
        if (part.op == Op::FlipFlop && !part.has(PART_LOADS) && !part.has(PART_SETS_CLEARS)) {
            const Span<Signal> out = graph.outputsOf(node);
            for (std::size_t at = 0; at < 4; ++at) {
                use(in[at]);
            }
            for (std::size_t bit = 0; bit < part.width; ++bit) {
                if (isUsed[out[bit]]) {
                    use(in[4 + bit]);
                }
            }
            return;
        }
        std::for_each(in.begin(), in.end(), use);
        if (part.op == Op::MemoryRead || part.op == Op::ClockedRead) {
            for (const std::uint32_t writer : writers[node.state]) {
                const Span<Signal> written = graph.inputsOf(graph.nodes[writer]);
                std::for_each(written.begin(), written.end(), use);
            }
        }
    };
    while (!open.empty()) {
        const std::uint32_t driver = graph.drivers[open.back()];
        open.pop_back();
        if (driver != NONE) {
            useNode(graph.nodes[driver]);
            const Node &node = graph.nodes[driver];
            if (graph.partOf(node).op == Op::ShiftOutput) {
                for (std::uint32_t at = driver; at-- > 0 && graph.nodes[at].cell == node.cell;) {
                    useNode(graph.nodes[at]);
                }
            }
        }
    }
    return isUsed;
}

} // namespace kvr::netlistdb::analysis::probe
