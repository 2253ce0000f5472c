#pragma once

#include "analysis/probe/BitGraph.h"
#include "analysis/probe/Lanes.h"
#include "analysis/probe/LogicProgram.h"

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
    /// By wire.
    const std::vector<Lanes> &values() const { return m_values; }
    /// The same, for setting many at once as set() does.
    Lanes *change()
    {
        unsettle();
        return m_values.data();
    }
    /// Gives a wire that nothing drives, or a register, a value. react() or settle() must follow.
    void set(Signal signal, const Lanes &value)
    {
        m_values[signal] = value;
        unsettle();
    }
    /// The same for a clock input, which registers do not take for data: they see what was at rest before it moved.
    void setClock(Signal signal, const Lanes &value) { m_values[signal] = value; }
    /// What an inout port sees where nothing inside drives it.
    void setExternal(Signal signal, const Lanes &value)
    {
        m_external[m_externalOf[signal]] = value;
        unsettle();
    }
    /// Brings clocks and asynchronous resets to rest, and clocks the registers that they clock.
    void react();
    /// Brings all logic to rest.
    void settle();
    /// Brings the logic to rest that registers and memories depend on, and what alsoSettle() named. Latches that none
    /// of them depends on miss what happens meanwhile, until load() or restart().
    void settleStates();
    /// Names wires that settleStates() brings to rest, too.
    void alsoSettle(const std::vector<Signal> &signals) { compile(signals); }

    /// The state of everything; restored by load().
    struct State {
        std::vector<Lanes> values;
        std::vector<Lanes> stages;
        std::vector<Lanes> contents;
        std::vector<Lanes> clocks;
    };
    State save() const { return {m_values, m_stages, m_contents, m_clocks}; }
    /// Puts the state into @p state, and returns whether it was there already.
    bool saveTo(State &state) const;
    void load(const State &state);

    /// Wires in the fan-in of clocks and asynchronous resets, and these themselves.
    const std::vector<bool> &isControl() const { return m_isControl; }
    const std::vector<Signal> &clockSignals() const { return m_clockSignals; }
    /// The outputs of registers, bit by bit, in the order of the nodes.
    const std::vector<Signal> &registers() const { return m_registers; }
    /// Evaluates all of order() once, on values of the caller's; calls @p other with what no table describes.
    template <typename Other> void evaluateOnce(std::vector<Lanes> &values, Other other) const
    {
        m_states.run(values, other);
        m_rest.run(values, other);
    }
    /// All logic but what is in loops, each node behind those that it depends on.
    const std::vector<std::uint32_t> &order() const { return m_order; }

  private:
    /// A bit of a flip-flop.
    struct FlipFlopBit {
        Signal q;
        Signal d;
        Signal enable;
        Signal reset;
        std::uint8_t start; ///< what the reset makes of it: 0, 1, or 2 where that is not known
    };
    /// What an edge of a clock works on.
    struct Clocked {
        std::vector<FlipFlopBit> resetFirst; ///< bits whose reset comes before their enable
        std::vector<FlipFlopBit> enableFirst;
        std::vector<Step> others; ///< all that is in no other list
        std::vector<Step> writes;
        std::vector<Step> writeFirst; ///< reads that show what is written at the same time
        bool isEmpty = true;
    };
    struct ClockGroup {
        Signal clock;
        std::vector<std::uint32_t> nodes;
        Clocked rising;
        Clocked falling;
        LogicProgram cone; ///< logic in front of the registers
        bool hasCone = false;
    };
    /// An edge in some runs.
    struct Edge {
        std::uint32_t group;
        const Clocked *clocked;
        std::uint64_t sure;
        std::uint64_t maybe;
    };
    /// What a register takes over when all have been looked at.
    struct Later {
        Signal signal;
        Lanes value;
    };
    /// What is written to a bit of a word, and the runs in which it is.
    struct WrittenBit {
        Lanes value;
        std::uint64_t lanes;
    };
    /// A bit of a flip-flop with an asynchronous reset.
    struct AsynchronousBit {
        Signal q;
        std::uint8_t start;
    };
    /// Bits that stand side by side and have one reset, or a step where it is more than a reset.
    struct ResetGroup {
        Signal reset;
        std::uint32_t step;  ///< in m_asynchronous; NONE for bits
        std::uint32_t first; ///< in m_asynchronousBits
        std::uint32_t end;
        Lanes applied; ///< the value of the reset that its bits have followed
    };

    void unsettle()
    {
        m_areResetsApplied = false;
        unsettleLogic();
    }
    void unsettleLogic()
    {
        m_areStatesSettled = false;
        m_isRestSettled = false;
    }
    void findControl();
    void findClocks();
    void addClocked(std::uint32_t node, Clocked &clocked) const;
    void addAsynchronous(std::uint32_t node);
    void compile(const std::vector<Signal> &alsoRead);
    std::vector<std::uint32_t> coneOf(const std::vector<Signal> &signals) const;
    void startMemories();
    void run(const LogicProgram &program);
    void run(const Step &step);
    void runLatch(const Part &part, Span<Signal> in, Span<Signal> out);
    void readMemory(const Node &node, Span<Signal> address, std::size_t width);
    void writeMemory(const Step &step, std::uint64_t edge);
    Lanes stageOf(const Node &node, const Part &part, Span<Signal> address) const;
    bool applyAsynchronous();
    bool applyAsynchronous(const Step &step);
    bool clockRegisters();
    void findEdges();
    void settleFor(std::uint32_t group);
    template <bool ENABLE_FIRST> void clockBits(const std::vector<FlipFlopBit> &bits, const Edge &edge);
    void clockNode(const Step &step, std::uint64_t edge);
    void shiftStages(const Step &step, std::uint64_t edge);
    void multiplyAdd(const Step &step, std::uint64_t edge);
    void readClocked(const Step &step, std::uint64_t edge);
    void setLater(Signal signal, const Lanes &next, std::uint64_t edge);

    const BitGraph &m_graph;
    std::vector<Lanes> m_values;
    std::vector<Lanes> m_stages;   ///< of shift registers
    std::vector<Lanes> m_contents; ///< of memories
    std::vector<std::size_t> m_firstContent;
    std::vector<Lanes> m_external;
    std::vector<std::uint32_t> m_externalOf; ///< by signal; empty when there are no inout ports
    std::vector<std::uint32_t> m_order;
    LogicProgram m_states; ///< what registers and memories depend on
    LogicProgram m_rest;
    LogicProgram m_control;
    std::vector<bool> m_isControl;
    std::vector<ResetGroup> m_resetGroups; ///< in the order of the nodes
    std::vector<AsynchronousBit> m_asynchronousBits;
    std::vector<Step> m_asynchronous;
    std::vector<ClockGroup> m_groups;
    std::vector<Signal> m_clockSignals;
    std::vector<Lanes> m_clocks; ///< by group: the value that was seen last
    std::vector<Signal> m_registers;
    std::vector<Edge> m_edges;
    std::vector<Later> m_later; ///< has room for all registers: each takes over a value once
    std::size_t m_laterCount = 0;
    std::vector<Lanes> m_read;         ///< of a memory
    std::vector<WrittenBit> m_written; ///< to a memory
    bool m_areResetsApplied = false;   ///< to the registers as they are, with the values that they had
    bool m_areStatesSettled = false;
    bool m_isRestSettled = false;
};

} // namespace kvr::netlistdb::analysis::probe
