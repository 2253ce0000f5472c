#include "analysis/plan/DeepHashes.h"

#include "analysis/plan/CellInputs.h"

#include <DataBase.h>

namespace kvr::netlistdb::analysis::plan {

using namespace probe;

namespace {

constexpr unsigned ROUNDS = 32;

/// What the outputs of cells count as of which nothing but the type is known.
void addOpaque(const BitGraph &graph, std::vector<std::uint64_t> &hashes)
{
    for (const OpaqueCell &opaque : graph.opaque) {
        const char *const type = graph.instanceOf(opaque.occurrence, opaque.cell).View()->Owner()->Name();
        const Span<std::uint32_t> nets = graph.moduleOf(opaque.occurrence).netsOf(opaque.cell);
        for (const std::uint32_t pin : graph.recipes[graph.recipeOf(opaque.occurrence, opaque.cell)].outputs) {
            const Signal signal = graph.signalOf(opaque.occurrence, nets[pin]);
            if (signal >= FIRST_SIGNAL && graph.drivers[signal] == NONE) {
                hashes[signal] = mixed(hashOf(type != nullptr ? type : "") + pin);
            }
        }
    }
}

} // namespace

std::vector<std::uint64_t> deepHashes(const BitGraph &graph)
{
    std::vector<std::uint64_t> before(graph.signalCount);
    addOpaque(graph, before);
    for (const TopPort &port : graph.ports) {
        if (port.isInput && port.signal >= FIRST_SIGNAL && graph.drivers[port.signal] == NONE) {
            before[port.signal] = hashOf(port.name);
        }
    }
    for (Signal signal = 0; signal < FIRST_SIGNAL; ++signal) {
        before[signal] = mixed(signal + 1);
    }
    std::vector<std::uint64_t> now = before;
    std::vector<std::uint64_t> shapes;
    for (const Node &node : graph.nodes) {
        for (std::size_t at = 0; at < graph.outputsOf(node).size(); ++at) {
            shapes.push_back(shapeOf(graph, node, at, false));
        }
    }
    for (unsigned round = 0; round < ROUNDS; ++round) {
        auto shape = shapes.begin();
        for (const Node &node : graph.nodes) {
            const Span<Signal> outputs = graph.outputsOf(node);
            for (std::size_t at = 0; at < outputs.size(); ++at) {
                std::uint64_t hash = *shape++;
                forEachInput(graph, node, at, [&](Signal input) { hash = joined(hash, before[input]); });
                now[outputs[at]] = hash;
            }
        }
        if (round == 0) {
            for (const auto &[signal, value] : graph.starts) {
                now[signal] = mixed(now[signal] + (value ? 2 : 1));
            }
        }
        before.swap(now);
    }
    for (Signal signal = 0; signal < FIRST_SIGNAL; ++signal) {
        before[signal] = 0;
    }
    return before;
}

} // namespace kvr::netlistdb::analysis::plan
