#pragma once

#include "analysis/probe/BitGraph.h"
#include "analysis/probe/Lanes.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis::probe {

/// Runs a netlist clock cycle by clock cycle, 64 runs at a time. Registers and memories start with what the netlist
/// says, and with 0 where it says nothing, as devices do; everything else begins as not known.
///
/// Clocks are simulated, not assumed: a register takes over its input where its clock pin rises (or falls), whatever
/// the clock went through.
class Simulator {
  public:
    explicit Simulator(const BitGraph &graph);

    /// Back to the state before the first clock.
    void restart();
    const Lanes &operator[](Signal signal) const { return m_values[signal]; }
    /// Gives a wire that nothing drives, or a register, a value. react() or settle() must follow.
    void set(Signal signal, const Lanes &value)
    {
        m_values[signal] = value;
        m_isSettled = false;
    }
    /// The same for a clock input, which registers do not take for data: they see what was at rest before it moved.
    void setClock(Signal signal, const Lanes &value) { m_values[signal] = value; }
    /// What an inout port sees where nothing inside drives it.
    void setExternal(Signal signal, const Lanes &value)
    {
        m_external[m_externalOf[signal]] = value;
        m_isSettled = false;
    }
    /// Brings clocks and asynchronous resets to rest, and clocks the registers that they clock.
    void react();
    /// Brings all logic to rest.
    void settle();

    /// The state of everything; restored by load().
    struct State {
        std::vector<Lanes> values;
        std::vector<Lanes> stages;
        std::vector<Lanes> contents;
        std::vector<Lanes> clocks;
    };
    State save() const { return {m_values, m_stages, m_contents, m_clocks}; }
    void load(const State &state);

    /// Wires in the fan-in of clocks and asynchronous resets, and these themselves.
    const std::vector<bool> &isControl() const { return m_isControl; }
    const std::vector<Signal> &clockSignals() const { return m_clockSignals; }
    /// The outputs of registers, bit by bit, in the order of the nodes.
    const std::vector<Signal> &registers() const { return m_registers; }
    /// All logic but what is in loops, each node behind those that it depends on.
    const std::vector<std::uint32_t> &order() const { return m_order; }

  private:
    /// A node, with what is looked up for it all the time.
    struct Step {
        const Node *node;
        const Part *part;
        Span<Signal> in;
        Span<Signal> out;
    };
    Step stepOf(std::uint32_t node) const
    {
        const Node &own = m_graph.nodes[node];
        return {&own, &m_graph.partOf(own), m_graph.inputsOf(own), m_graph.outputsOf(own)};
    }
    std::vector<Step> stepsOf(const std::vector<std::uint32_t> &nodes) const;

    void findControl();
    void findClocks();
    std::vector<std::uint32_t> coneOf(const std::vector<Signal> &signals) const;
    void startMemories();
    void run(const Step &step);
    void runLatch(const Part &part, Span<Signal> in, Span<Signal> out);
    void readMemory(const Node &node, Span<Signal> address, Span<Signal> out);
    void writeMemory(const Node &node, std::uint64_t edge);
    Lanes stageOf(const Node &node, const Part &part, Span<Signal> address) const;
    bool applyAsynchronous();
    bool clockRegisters();
    void settleFor(std::uint32_t group);
    void clockNode(const Step &step, std::uint64_t sure, std::uint64_t maybe);
    void shiftStages(const Node &node, const Part &part, std::uint64_t edge);
    void multiplyAdd(const Node &node, const Part &part, std::uint64_t edge);
    void readClocked(const Node &node, const Part &part, std::uint64_t edge);
    void setLater(Signal signal, const Lanes &next, std::uint64_t sure, std::uint64_t maybe);

    struct ClockGroup {
        Signal clock;
        std::vector<std::uint32_t> nodes;
        std::vector<Step> steps; ///< of the nodes
        std::vector<Step> cone;  ///< logic in front of the registers
        bool hasCone = false;
    };

    const BitGraph &m_graph;
    std::vector<Lanes> m_values;
    std::vector<Lanes> m_stages;   ///< of shift registers
    std::vector<Lanes> m_contents; ///< of memories
    std::vector<std::size_t> m_firstContent;
    std::vector<Lanes> m_external;
    std::vector<std::uint32_t> m_externalOf; ///< by signal; empty when there are no inout ports
    std::vector<std::uint32_t> m_order;
    std::vector<Step> m_steps; ///< of the order
    std::vector<Step> m_control;
    std::vector<bool> m_isControl;
    std::vector<Step> m_asynchronous;
    std::vector<ClockGroup> m_groups;
    std::vector<Signal> m_clockSignals;
    std::vector<Lanes> m_clocks; ///< by group: the value that was seen last
    std::vector<Signal> m_registers;
    std::vector<std::pair<Signal, Lanes>> m_later;
    bool m_isSettled = false;
};

} // namespace kvr::netlistdb::analysis::probe
