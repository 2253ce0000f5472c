#pragma once

#include "analysis/SignalGraph.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis {

/// The strongly connected components of a graph, each behind all that it depends on. A component of several nodes, or
/// of one that depends on itself, is a combinational loop.
struct Components {
    explicit Components(const SignalGraph &graph);

    std::vector<std::uint32_t> nodes; ///< component by component
    std::vector<std::uint32_t> first; ///< place of the first node of each component, and the number of nodes

    std::uint32_t count() const { return static_cast<std::uint32_t>(first.size()) - 1; }
    Span<std::uint32_t> operator[](std::uint32_t component) const
    {
        return {nodes.data() + first[component], nodes.data() + first[component + 1]};
    }
};

} // namespace kvr::netlistdb::analysis
