#pragma once

#include "analysis/DesignModel.h"

#include <cstdint>
#include <deque>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb::analysis {

/// Occurrences that a walk has met, by number; the first ones are those from the top down to where it began.
class Contexts {
  public:
    Contexts(const DesignModel &design, const Context &start);
    const Level &level(std::uint32_t context) const { return m_levels[context].level; }
    /// The occurrence around, or NONE at the top.
    std::uint32_t above(std::uint32_t context) const { return m_levels[context].above; }
    std::uint32_t below(std::uint32_t context, std::uint32_t sub);
    std::uint32_t start() const { return m_start; }
    Context path(std::uint32_t context) const;

  private:
    struct Entry {
        Level level;
        std::uint32_t above;
    };
    const DesignModel &m_design;
    std::vector<Entry> m_levels;
    std::uint32_t m_start;
    std::unordered_map<std::uint64_t, std::uint32_t> m_below;
};

/// The unfolded fan-in of a net, nearest first, as far as nothing but logic lies between.
class FanIn {
  public:
    /// How the walk left a net.
    struct Way {
        StepKind kind = StepKind::End;
        std::uint32_t cell = NONE;   ///< of the module of the net; for a port of the module NONE
        std::uint32_t output = NONE; ///< pin of the cell, or port of the module
        std::uint32_t input = NONE;  ///< pin of the cell that leads on
    };
    struct Node {
        std::uint32_t context;
        std::uint32_t net;
        std::uint32_t cells; ///< distance from the start
        std::uint32_t after; ///< the node that the walk came from; NONE at the start
        Way way;             ///< out of that node
    };
    /// Something that a net comes from, met at a node.
    struct End {
        std::uint32_t node;
        std::uint32_t clock; ///< among all clocks of the design; NONE for what is none
        bool isNetwork;
        std::uint32_t clockNet; ///< of a register: the net on its clock pin
        std::uint32_t flag;     ///< one of Reaching, or 0
        Way way;
    };

    FanIn(const DesignModel &design, const Place &start);

    /// Walks on; returns whether there was anything left. Ends that were met are in ends().
    bool step();
    const std::vector<End> &ends() const { return m_ends; }
    const std::vector<Node> &nodes() const { return m_nodes; }
    const Contexts &contexts() const { return m_contexts; }
    /// The first node, in order of distance, that lies on a combinational loop; NONE when none does. Walks to the end.
    std::uint32_t nearestLoop();

  private:
    void visit(std::uint32_t node);
    void visitPort(std::uint32_t node, std::uint32_t port);
    void visitCell(std::uint32_t node, CellPin pin);
    /// An end at the register that drives the net, clocked on @p clockNet through its pin @p clockPin, either NONE.
    void endAtRegister(std::uint32_t node, CellPin pin, std::uint32_t clockNet, std::uint32_t clockPin);
    void visitInstance(std::uint32_t node, CellPin pin);
    void reach(std::uint32_t from, std::uint32_t context, std::uint32_t net, std::uint32_t cells, const Way &way);
    void endAt(std::uint32_t node, std::uint32_t flag, const Way &way);

    const DesignModel &m_design;
    Contexts m_contexts;
    std::vector<Node> m_nodes;
    std::vector<bool> m_isDone;
    std::vector<End> m_ends;
    std::deque<std::uint32_t> m_pending;
    std::unordered_map<std::uint64_t, std::uint32_t> m_known; ///< from context and net to node
    struct Edge {
        std::uint32_t from;
        std::uint32_t to;
        bool isWire; ///< the two are one net, connected through an inout port
    };
    std::vector<Edge> m_edges;
};

} // namespace kvr::netlistdb::analysis
