#pragma once

#include "analysis/probe/BitGraph.h"

#include <string>
#include <unordered_map>

namespace kvr::netlistdb::analysis::probe {

/// Fills a BitGraph: unfolds the modules, joins nets that are one wire, and puts the parts of cells on the wires.
class Flattener {
  public:
    explicit Flattener(BitGraph &graph) : m_graph(graph) {}
    void run();

  private:
    void readCells();
    void unfold();
    void joinPorts();
    void countDrivers();
    void joinBuffers();
    void numberSignals();
    void addNodes();
    void addNode(std::uint32_t occurrence, std::uint32_t cell, std::uint32_t part, Signal firstInner);
    void sinkOutputs();
    void addPorts();
    void readStarts();
    std::uint32_t memoryOf(std::uint32_t occurrence, std::uint32_t cell, const Recipe &recipe, const Part &part);
    template <typename Visit> void forEachLeaf(Visit visit) const;
    std::uint32_t wireOf(std::uint32_t net);
    void unite(std::uint32_t a, std::uint32_t b);
    std::uint32_t netAt(std::uint32_t occurrence, std::uint32_t cell, Slot slot) const;

    BitGraph &m_graph;
    std::vector<std::uint32_t> m_leader; ///< by wire: the constants, then all nets
    std::vector<std::uint8_t> m_drivers; ///< by wire: 0, 1, or 2 for several
    std::unordered_map<std::string, std::uint32_t> m_sharedMemories;
    std::vector<Signal> m_own; ///< by pin of the cell at hand: a wire for an output that is on no net
};

} // namespace kvr::netlistdb::analysis::probe
