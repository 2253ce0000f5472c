#pragma once

#include "analysis/crossings/PortBinding.h"

#include <cstdint>
#include <map>
#include <vector>

namespace kvr::netlistdb::analysis {

/// An input pin of a cell.
struct PinOfCell {
    std::uint32_t cell;
    std::uint32_t pin; ///< NONE: the cell as a whole, a memory with several clocks
};

/// A clock that captures an input pin.
struct CapturingPin {
    std::uint32_t pin;
    std::uint32_t clock;
};

/// The clocks that capture @p pin of a leaf cell: those of its model, and of a latch those that open it. A clock stands
/// once, in ascending order.
std::vector<std::uint32_t> capturingClocks(const BoundModules &modules, std::uint32_t module,
                                           const PortBinding &binding, const PinOfCell &pin);

/// True for set, reset and load pins that act without a clock, or of which that is not known.
bool isAsynchronous(PinRole role);

/// Pairs of clocks of a memory, the first writing it and the second, a different one, showing what is read: their
/// numbers and the output pin.
struct MemoryClocks {
    std::uint32_t write;
    std::uint32_t read;
    std::uint32_t output;
};
std::vector<MemoryClocks> memoryClocks(const BoundModules &modules, std::uint32_t module, const PortBinding &binding,
                                       std::uint32_t cell);

/// Finds the pins at which crossings end, each module once for each way in which its ports are bound.
class CrossingPins {
  public:
    explicit CrossingPins(const DesignModel &design);

    /// One way in which a module is used.
    struct Use {
        std::uint32_t module;
        bool hasCrossings = false;       ///< here or below
        std::vector<PinOfCell> pins;     ///< at which crossings end
        std::vector<std::uint32_t> subs; ///< by instance of a module: its use
    };
    const std::vector<Use> &uses() const { return m_uses; }
    /// The use of the top.
    static constexpr std::uint32_t TOP = 0;

  private:
    std::uint32_t useOf(std::uint32_t module, PortBinding binding);
    PortBinding renumber(const PortBinding &binding);
    void findPins(std::uint32_t use);

    ClockSets m_sets;
    BoundModules m_modules;
    std::vector<Use> m_uses;
    std::vector<PortBinding> m_bindings; ///< by use
    std::map<std::vector<std::uint32_t>, std::uint32_t> m_numbers;
};

} // namespace kvr::netlistdb::analysis
