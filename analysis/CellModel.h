#pragma once

#include "analysis/Lists.h"

#include <netlistdb/analysis/Clocks.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Verific {
class Netlist;
class Port;
} // namespace Verific

namespace kvr::netlistdb::analysis {

/// What a cell is, as far as clocks are concerned.
enum class CellKind : std::uint8_t {
    Logic,
    Multiplexer, ///< with select pins
    Buffer,      ///< buffers and inverters, wiring among them
    Pad,
    ClockGate,
    ClockMux,
    Constant,
    FlipFlop,
    Latch,
    Memory,
    Dsp,
    ShiftRegister,
    Ddr,            ///< double-data-rate register
    ClockGenerator, ///< a PLL, an oscillator, a clock divider
    BlackBox,
};

/// What a pin is for.
enum class PinRole : std::uint8_t {
    Data, ///< anything that is none of the others
    Clock,
    Enable,
    SetReset,      ///< not known which of the two
    AsyncSetReset, ///< asynchronous load among them
    SyncSetReset,
    Select,    ///< of a multiplexer
    Address,   ///< of a memory or shift register
    Reference, ///< clock input of a clock generator
};

/// The use that a register makes of an input of that role.
CaptureRole captureRoleOf(PinRole role);

/// How a cell carries clocks from pin to pin: what all instances of one view with like parameters have in common.
/// Pins are the ports of the view in its order, one per bit, and then those that are borrowed.
struct CellModel {
    struct Pin {
        const Verific::Port *port = nullptr;
        bool isInput = false; ///< inout pins are both
        bool isOutput = false;
        bool isBorrowed = false; ///< of the first instance of a cell that was read as several
        PinRole role = PinRole::Data;
        bool inverts = false;        ///< of an output that passes an input on
        std::uint32_t group = NONE;  ///< of an output: the group of inputs that reach it at once
        std::uint32_t passes = NONE; ///< of an output: the input that it is electrically, but for buffers and inverters
    };
    struct ClockPin {
        std::uint32_t pin;
        std::uint8_t edges; ///< mask of ClockEdge
    };

    const Verific::Netlist *view = nullptr; ///< null: an instance without view
    CellKind kind = CellKind::BlackBox;
    bool loadsAsynchronously = false;
    std::vector<Pin> pins;
    Lists<std::uint32_t> groups;             ///< input pins that together reach an output
    std::vector<std::uint32_t> groupOutputs; ///< number of outputs of each group
    std::vector<ClockPin> clocks;
    Lists<std::uint32_t> launches; ///< by pin: places in clocks, of those that launch that output
    Lists<std::uint32_t> captures; ///< by pin: places in clocks, of those that capture that input

    bool isOpaque() const { return kind == CellKind::BlackBox || kind == CellKind::ClockGenerator; }
    /// True for a cell that clocks act on.
    bool isRegister() const { return !clocks.empty(); }
    /// True for a cell that data passes through while it is enabled: a latch, a flip-flop with asynchronous load.
    bool isTransparent() const { return kind == CellKind::Latch || loadsAsynchronously; }
    std::size_t memory() const;
};

} // namespace kvr::netlistdb::analysis
