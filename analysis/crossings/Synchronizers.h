#pragma once

#include "analysis/crossings/Registers.h"
#include "analysis/crossings/Wires.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis {

/// A chain of flip-flops of one clock.
struct FlipFlopChain {
    std::vector<PinPlace> stages; ///< data pins
    bool isKept = false;          ///< an attribute keeps the flip-flops together
};

/// Recognises flip-flops that stand one behind the other and nothing between them.
class Synchronizers {
  public:
    Synchronizers(Unfolding &design, Registers &registers) : m_design(design), m_registers(registers) {}

    /// The chain that begins with the flip-flop of data pin @p first, on @p clock: each but the last feeds nothing else
    /// than the next. Fewer than two stages: no synchronizer.
    FlipFlopChain behind(const PinPlace &first, std::uint32_t clock);

    /// The chain that a flip-flop with the asynchronous set or reset pin @p reset belongs to, which releases the reset
    /// in step with @p clock: the first captures a constant, each further one its predecessor, all have the same reset.
    /// No stages: the flip-flop, or one of its bits, belongs to none.
    FlipFlopChain ofReset(const PinPlace &reset, std::uint32_t clock);

  private:
    bool isOn(const PinPlace &data, std::uint32_t clock) const;
    bool isKept(const PinPlace &data);
    /// The only flip-flop that a bit feeds; its data pin.
    bool next(const PinPlace &data, std::uint32_t clock, PinPlace &following);
    bool hasReset(const PinPlace &data, const Driver &reset);

    Unfolding &m_design;
    Registers &m_registers;
};

} // namespace kvr::netlistdb::analysis
