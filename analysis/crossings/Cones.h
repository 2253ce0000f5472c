#pragma once

#include "analysis/crossings/Unfolding.h"

#include <array>
#include <cstdint>
#include <map>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb::analysis {

/// Clock number for what comes from ports of the top and black boxes, without a clock.
constexpr std::uint32_t UNCLOCKED = NONE - 1;

/// The logic between the registers of one clock and the nodes that they reach: everything on the way, and nothing else.
class Cones {
  public:
    /// Walks back from @p ends, nodes that registers of @p launch reach, to those registers.
    Cones(Unfolding &design, std::uint32_t launch, const std::vector<Node> &ends);

    /// What reaches a node.
    struct Reach {
        std::uint32_t source = NONE; ///< place in sources() of the nearest; NONE: nothing does
        std::uint32_t cells = 0;     ///< between it and the node
        bool hasSeveral = false;     ///< sources
        bool hasLogic = false;       ///< more than buffers and inverters on the way from some source
    };
    /// A node where a way begins.
    struct Source {
        Node node;
        PinPlace pin;       ///< the output; for a port of the top, cell is NONE and pin the port
        std::uint32_t step; ///< of its node
    };
    /// From a step to one that depends on it, through a cell or along a wire. Steps are nodes and, for inputs of a cell
    /// that reach several outputs together, one more between them.
    struct Edge {
        std::uint32_t from;
        std::uint32_t to;
        std::uint32_t cell;   ///< NONE along a wire, and out of a step between pins
        std::uint32_t input;  ///< pin of the cell
        std::uint32_t output; ///< pin of the cell; NONE into a step between pins
    };

    const std::vector<Source> &sources() const { return m_sources; }
    const Reach &reach(Node node) const { return m_reach[m_steps.at(node)]; }
    /// Whether the node lies on a way.
    bool has(Node node) const { return m_steps.count(node) != 0; }
    std::uint32_t stepOf(Node node) const { return m_steps.at(node); }
    std::uint32_t stepCount() const { return static_cast<std::uint32_t>(m_nodes.size()); }
    std::uint32_t contextOf(std::uint32_t step) const { return m_contexts[step]; }
    /// All edges, sorted by where they come from.
    const std::vector<Edge> &edges() const { return m_edges; }
    /// The first edge from @p step.
    std::uint32_t firstEdge(std::uint32_t step) const { return m_first[step]; }

  private:
    void collect(const std::vector<Node> &ends);
    std::uint32_t add(Node node);
    std::uint32_t addJunction(const PinPlace &output, std::uint32_t group);
    void visit(std::uint32_t step);
    void visitOutput(std::uint32_t step, const PinPlace &pin);
    void addInputs(std::uint32_t step, const PinPlace &output, std::uint32_t group, std::uint32_t shownOutput);
    bool isLaunched(const PinPlace &pin) const;
    bool isReached(Node node);
    void sortEdges();
    void measure();
    void spread();

    Unfolding &m_design;
    std::uint32_t m_launch;
    std::unordered_map<Node, std::uint32_t> m_steps;
    std::map<std::array<std::uint32_t, 3>, std::uint32_t> m_junctions; ///< from context, cell and group to step
    std::vector<Node> m_nodes;                                         ///< by step; NONE between pins
    std::vector<std::uint32_t> m_contexts;                             ///< by step
    std::vector<Edge> m_edges;
    std::vector<std::uint32_t> m_first; ///< by step
    std::vector<Source> m_sources;
    std::vector<Reach> m_reach; ///< by step
};

} // namespace kvr::netlistdb::analysis
