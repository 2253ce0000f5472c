#pragma once

#include "analysis/probe/Hash.h"
#include "analysis/probe/NamePairs.h"
#include "analysis/probe/Simulator.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace kvr::netlistdb::analysis::probe {

/// Both netlists side by side with the same inputs: ports of the top that have one name, and outputs of cells that are
/// black boxes in both.
class Bench {
  public:
    Bench(const BitGraph &elaborated, const BitGraph &postMap, const NamePairs &names);

    Simulator elaborated;
    Simulator postMap;

    /// Both in the state before the first clock, and through a reset, as far as an input is one.
    void start();
    /// One clock cycle with new random inputs. @p atRest is called while the clocks are low and everything is at rest,
    /// @p whileHigh while they are high (only wires that are part of clocks and resets are then at rest).
    template <typename AtRest, typename WhileHigh> void step(AtRest atRest, WhileHigh whileHigh)
    {
        applyInputs(false);
        elaborated.settle();
        postMap.settle();
        atRest();
        moveClocks(true);
        whileHigh();
        moveClocks(false);
    }
    /// The same for those who look at registers alone, in less time; load() or start() must follow before the next
    /// step().
    void stepStates()
    {
        applyInputs(false);
        moveClocks(true);
        moveClocks(false);
    }

    struct State {
        Simulator::State elaborated;
        Simulator::State postMap;
    };
    State save() const { return {elaborated.save(), postMap.save()}; }
    void load(const State &state)
    {
        elaborated.load(state.elaborated);
        postMap.load(state.postMap);
    }
    Random &random() { return m_random; }

  private:
    struct Input {
        WirePair wires;
        bool isExternal;
        bool isClock = false;
        bool isReset = false;
        bool active = false;     ///< value of a reset while it acts
        std::uint32_t group = 0; ///< the same for all bits of a port
        std::uint64_t value = 0;
        std::uint64_t seldomOne = 0;  ///< runs in which it is mostly 0
        std::uint64_t seldomZero = 0; ///< runs in which it is mostly 1
        std::uint64_t seldomMoves = 0;
    };

    void findInputs(const BitGraph &left, const BitGraph &right);
    void findImports(const BitGraph &left, const BitGraph &right, const NamePairs &names);
    void findClocks(const BitGraph &graph, const Simulator &simulator, Signal WirePair::*side);
    void findResets();
    void tryResets(Span<Input *> tried);
    void applyInputs(bool isReset);
    void apply(const Input &input, const Lanes &value);
    void moveClocks(bool high);

    std::vector<Input> m_inputs;
    std::vector<WirePair> m_imports; ///< post-map wires that only their name tells of, and whose values they take
    Random m_random{1};
};

} // namespace kvr::netlistdb::analysis::probe
