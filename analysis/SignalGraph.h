#pragma once

#include "analysis/Hierarchy.h"
#include "analysis/SetTable.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis {

struct ModuleSets;

/// What reaches what at once in one module: from every node back to those that it depends on. Nodes are the nets, and,
/// for every group of pins of a cell that reach several outputs together, one more node between them. Exists while a
/// module is analysed.
class SignalGraph {
  public:
    /// A node that is no net: inputs of a cell that reach several outputs, or of an instance.
    struct Junction {
        std::uint32_t cell;
        std::uint32_t group; ///< of the cell's model; of an instance: the first port that shows it
    };

    /// @p sets: of the modules that are instantiated.
    SignalGraph(const Hierarchy &hierarchy, std::uint32_t module, const std::vector<ModuleSets> &sets);

    std::uint32_t nodeCount() const { return static_cast<std::uint32_t>(m_first.size()) - 1; }
    bool isNet(std::uint32_t node) const { return node < m_nets; }
    const Junction &junction(std::uint32_t node) const { return m_junctions[node - m_nets]; }
    const std::vector<Junction> &junctions() const { return m_junctions; }
    std::uint32_t netCount() const { return m_nets; }
    /// Numbers of the edges from @p node.
    std::uint32_t firstEdge(std::uint32_t node) const { return m_first[node]; }
    std::uint32_t endEdge(std::uint32_t node) const { return m_first[node + 1]; }
    /// The node that the edge leads back to.
    std::uint32_t before(std::uint32_t edge) const { return m_before[edge]; }
    /// Number of cells that the edge passes.
    std::uint32_t cells(std::uint32_t edge) const { return m_cells[edge]; }

  private:
    void addJunctions();
    void addJunctionEdges(const Junction &junction);
    void addNetEdges(std::uint32_t net);
    void addEdge(std::uint32_t before, std::uint32_t cells);

    const Hierarchy &m_hierarchy;
    const ModuleGraph &m_module;
    const std::vector<ModuleSets> &m_sets;
    std::uint32_t m_nets;
    std::vector<Junction> m_junctions;
    std::vector<std::uint32_t> m_junctionOfPin; ///< by position among the pins of all cells, of outputs
    std::vector<std::uint32_t> m_first;
    std::vector<std::uint32_t> m_before;
    std::vector<std::uint32_t> m_cells;
};

} // namespace kvr::netlistdb::analysis
