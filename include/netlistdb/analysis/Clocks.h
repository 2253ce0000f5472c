#pragma once

#include <netlistdb/InstanceNetSet.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What goes beyond the design database: analyses that read it.
namespace kvr::netlistdb::analysis {

/// Place of a clock in ClockMap::clocks().
using ClockId = std::uint32_t;

/// What a clock begins at.
enum class ClockRoot : std::uint8_t {
    Port,     ///< a port of the top
    BlackBox, ///< an output of a black box: a PLL, an oscillator, a hard block, a module without contents
    Register, ///< an output of a register: a divided clock
    Logic,    ///< logic, or several drivers: a gated or multiplexed clock
    Constant, ///< a constant: nothing ever happens on it
    Undriven, ///< nothing
};

/// The name of @p root in lower case, words joined with "-": "port", "black-box", and so on. A text for ever.
NETLISTDB_EXPORT const char *nameOf(ClockRoot root);

/// Clock edges, one bit each.
enum ClockEdge : std::uint8_t {
    EDGE_RISE = 1, ///< rising
    EDGE_FALL = 2, ///< falling
};

/// One clock of the design: a net where it begins, with everything that is electrically that net. Inverters do not make
/// another clock; logic, registers and black boxes do.
struct Clock {
    /// Path of an instance, "/" and name of a net: of the net where it begins, or, when no user declared that one, of
    /// the best net under which the database lists it as a domain: declared by a user, not inverted, nearest to the
    /// top, with the shortest name.
    std::string name;
    IVDBInstance *instance;         ///< where it begins; null when the tree has no item for that instance
    IVDBNet *net;                   ///< the net where it begins
    ClockRoot root;                 ///< what drives that net
    std::uint8_t edges;             ///< mask of ClockEdge: the edges of that net that registers use
    std::uint64_t registers;        ///< number of register, memory and DSP cells that it clocks, unfolded
    std::vector<ClockId> parents;   ///< clocks that it is made from, in ascending order; empty when none is known
    std::vector<std::string> names; ///< its other names: of the net where it begins, and of its domains; in byte order
};

/// What reaches a net besides clocks, one bit each.
enum Reaching : std::uint32_t {
    REACHED_BY_INPUT_PORT = 1, ///< a port of the top
    REACHED_BY_CONSTANT = 2,   ///< a constant
    REACHED_BY_BLACK_BOX = 4,  ///< an output of a cell whose inside is not known
    REACHED_BY_LATCH = 8,      ///< a latch was looked through on the way
    REACHED_BY_UNDRIVEN = 16, ///< a net or pin that nothing drives, or a register whose clock pin is open or led to one
    REACHED_BY_LOOP = 32,     ///< a combinational loop
};

/// A clock that reaches a net.
struct ReachingClock {
    ClockId clock;       ///< the clock
    std::uint32_t cells; ///< number of cells on the shortest way, without the register

    /// Whether both are the same clock, as far away.
    friend bool operator==(const ReachingClock &a, const ReachingClock &b)
    {
        return a.clock == b.clock && a.cells == b.cells;
    }
};

/// All clocks that a net can change with.
struct LaunchClocks {
    /// Clocks whose registers reach the net through logic, buffers, pads and hierarchy: the nearest first, then by
    /// name.
    std::vector<ReachingClock> clocks;
    /// Clocks that reach the net themselves, other than through a register: the clock's own network, and logic that a
    /// clock goes into as if it were data. The same order.
    std::vector<ReachingClock> networks;
    std::uint32_t reached = 0; ///< mask of Reaching
};

/// Nets of a design, bit by bit in every instance of a module with contents.
struct NetCounts {
    std::vector<std::uint64_t> launched; ///< by ClockId: those that its registers reach
    std::uint64_t nets = 0;              ///< all
    std::uint64_t withoutClock = 0;      ///< those that the registers of no clock reach
};

/// How a register uses what it captures, one bit each.
enum CaptureRole : std::uint8_t {
    CAPTURE_DATA = 1,      ///< data, address
    CAPTURE_ENABLE = 2,    ///< clock enable, write enable
    CAPTURE_SET_RESET = 4, ///< set, reset, load; in step with the clock or not
};

/// What a net reaches besides registers, one bit each.
enum Reached : std::uint32_t {
    REACHES_OUTPUT_PORT = 1, ///< a port of the top
    REACHES_BLACK_BOX = 2,   ///< an input of a cell whose inside is not known
    REACHES_LATCH = 4,       ///< a latch, which was looked through
    REACHES_CLOCK_PIN = 8,   ///< a clock pin: the net is a clock, or gates one
};

/// A clock whose registers a net reaches.
struct CapturingClock {
    ClockId clock;      ///< the clock
    std::uint8_t roles; ///< mask of CaptureRole

    /// Whether both are the same clock, in the same roles.
    friend bool operator==(const CapturingClock &a, const CapturingClock &b)
    {
        return a.clock == b.clock && a.roles == b.roles;
    }
};

/// All clocks that capture a net.
struct CaptureClocks {
    std::vector<CapturingClock> clocks; ///< by name; a clock pin captures nothing
    std::uint32_t reached = 0;          ///< mask of Reached
};

/// What a net is electrically: followed back through buffers, pads, inverters and hierarchy.
struct ElectricalNet {
    IVDBInstance *instance;       ///< where the net begins; null when the tree has no item for that instance
    IVDBNet *net;                 ///< the net that it begins at
    ClockRoot root;               ///< what drives that
    bool inverted;                ///< an odd number of inverters lies between
    std::optional<ClockId> clock; ///< the clock that begins there, when it clocks anything
};

/// A place in the source text; the file is empty when there is none.
struct SourcePlace {
    std::string file;  ///< absolute path
    unsigned line = 0; ///< counted from 1
};

/// How a step of a chain leaves its net, going back.
enum class StepKind : std::uint8_t {
    Cell,      ///< through a cell that drives the net: logic, buffer, latch
    Hierarchy, ///< into the instance that drives the net, or out of the module through a port
    Register,  ///< the register that drives the net; the chain ends at its clock pin
    End,       ///< nothing follows: what the net begins at
};

/// One net of a chain, and how the chain goes on from there.
struct ChainStep {
    StepKind kind;          ///< how the net is left
    IVDBInstance *instance; ///< where the net is seen; null when the tree has no item for that instance
    IVDBNet *net;           ///< the net
    std::string netName;    ///< full name of the net
    std::string cell; ///< path of the cell or instance that is passed, or that drives the net; empty: a port or none
    std::string cellType; ///< name of its module
    std::string output;   ///< its pin on the net; for a module's own port, the name of the port
    std::string input;    ///< the pin through which the chain goes on: of a register, its clock pin
    SourcePlace place;    ///< of the cell, or else of the net
};

/// Why a clock reaches a net.
struct ClockChain {
    ClockId clock;                      ///< the clock
    std::uint32_t cells;                ///< as in ReachingClock
    std::vector<ChainStep> data;        ///< from the net to the register, or to the root of a clock network
    std::vector<ChainStep> clockToRoot; ///< from the register's clock pin to the root of the clock
};

/// What else a net comes from.
struct EndChain {
    Reaching end;                ///< the kind of end that was reached
    std::vector<ChainStep> data; ///< from the net to the nearest such end
};

/// The proof of LaunchClocks: shortest chains, in the same order.
struct LaunchProof {
    std::vector<ClockChain> clocks;   ///< for LaunchClocks::clocks
    std::vector<ClockChain> networks; ///< for LaunchClocks::networks
    std::vector<EndChain> ends;       ///< one for each bit of LaunchClocks::reached, in order of the bits
};

} // namespace kvr::netlistdb::analysis
