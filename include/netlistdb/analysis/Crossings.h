#pragma once

#include <netlistdb/analysis/ClockMap.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kvr::netlistdb::analysis {

/// How a path gets from one clock to another, the most telling first: of several that hold for one path, the first
/// decides. docs/crossings.md shows each with a picture.
enum class CrossingClass : std::uint8_t {
    SynchronizedReset, ///< asynchronous set or reset, released through a chain of flip-flops that are kept together
    SynchronizedResetUnkept, ///< the same without an attribute that keeps the chain together
    Memory,                  ///< a memory that one clock writes and another reads
    EnableControlled,        ///< the target's clock enable comes from a synchronizer between the same clocks
    HoldingMultiplexer,      ///< a multiplexer that such a select opens, and that holds the target's value otherwise
    MultiplexerControlled,   ///< a multiplexer or gate that such a select opens
    RelatedClocks,           ///< not synchronized, but the two clocks have an ancestor in common
    SeveralClocks,           ///< registers of several unrelated clocks in the fan-in of the target
    LogicBeforeSynchronizer, ///< logic, or several registers, in front of a synchronizer
    FanOut,                  ///< a synchronizer whose source reaches other registers of the target clock, too
    GrayBus,                 ///< Gray-coded bits through one synchronizer each, which are kept together
    GrayBusUnkept,           ///< the same without an attribute that keeps the flip-flops together
    SynchronizedBus,         ///< bits of one register through one synchronizer each, which are kept together
    SynchronizedBusUnkept,   ///< the same without an attribute that keeps the flip-flops together
    Reconvergence,           ///< one bit through a synchronizer, used together with another one of the same clocks
    SynchronizedBit,         ///< one bit through a synchronizer that is kept together
    SynchronizedBitUnkept,   ///< the same without an attribute that keeps the flip-flops together
    NoFlipFlop,              ///< the target is a latch, memory, DSP, shift register or double-data-rate register
    UnsynchronizedReset,     ///< asynchronous set or reset without synchronizer
    UnsynchronizedBus,       ///< several bits of one register, not synchronized
    UnsynchronizedBit,       ///< one bit, not synchronized
};

/// Number of crossing classes.
constexpr std::size_t CROSSING_CLASSES = 21;

/// How bad a crossing is.
enum class Severity : std::uint8_t {
    Safe,
    Warning, ///< safe under a condition that the netlist does not show
    Unsafe,
};

/// The name of @p kind in lower case, words joined with "-": "synchronized-bit", and so on. A text for ever.
NETLISTDB_EXPORT const char *nameOf(CrossingClass kind);
/// "safe", "warning" or "unsafe". A text for ever.
NETLISTDB_EXPORT const char *nameOf(Severity severity);
/// The class that nameOf() gives that name.
NETLISTDB_EXPORT std::optional<CrossingClass> crossingClassOf(std::string_view name);
/// How bad crossings of a class are.
NETLISTDB_EXPORT Severity severityOf(CrossingClass kind);

/// One end of a crossing: one bit of a register, a memory, or a port of the top.
struct CrossingEnd {
    IVDBInstance *instance; ///< where the end lies; null when the tree has no item for that instance
    IVDBNet *net;           ///< its output; of a target that is no flip-flop, the net on the pin; may be null
    std::string name;       ///< full name of the bit of the register; of a memory and the like, the path of the cell
    std::string bus;        ///< full name of the vector that the bit belongs to, otherwise empty
    int bit = 0;            ///< its index in that vector
    std::string cell;       ///< path of the cell; empty for a port
    std::string cellType;   ///< name of its module; empty for a port
    std::string pin;        ///< the pin where the crossing leaves or enters the cell
};

/// A path from registers of one clock to a register of another.
struct Crossing {
    CrossingEnd from; ///< the nearest register of the launch clock
    CrossingEnd to;
    std::optional<ClockId> launch; ///< none: a port of the top or a black box, for asynchronous set and reset only
    ClockId capture;
    std::uint32_t cells;    ///< number of cells on the shortest way from register to register
    CrossingClass kind;     ///< the most telling class
    std::uint32_t kinds;    ///< all classes that hold: bit 1 << CrossingClass
    std::uint32_t stages;   ///< flip-flops of the synchronizer; 0: none
    bool isKept;            ///< an attribute keeps them together
    bool hasSeveralSources; ///< more than one register (bit) of the launch clock reaches the target
    bool hasLogic;          ///< more than buffers and inverters on the way
    std::string control;    ///< full name of the synchronized net that opens the way; empty: none
    std::string meets;      ///< full name of the net where it meets another synchronized bit; empty: none
    SourcePlace place;      ///< of the target

    Severity severity() const { return severityOf(kind); }
    bool holds(CrossingClass other) const { return (kinds >> static_cast<unsigned>(other) & 1U) != 0; }
};

/// What a designer knows about clocks and the netlist does not show.
struct ClockGroups {
    enum class Kind {
        Asynchronous, ///< clocks of one group are related, those of different groups are not, whatever they come from
        Exclusive,    ///< clocks of different groups never run at the same time: there are no crossings between them
    };
    Kind kind;
    std::vector<std::vector<ClockId>> groups; ///< a clock in no group stays what the netlist says
};

/// All paths of a source from registers of one clock to registers of another.
///
/// One entry for each target bit and launch clock; a register bit is a target once for each of its pins. Asynchronous
/// sets and resets count also when they come from a port of the top or a black box; other paths from there have no
/// launch clock and are no crossings, and neither are clocks that are used as data, or logic in clock networks.
///
/// Takes time in proportion to the distinct modules and the cones of logic between clocks; only instances that take
/// part in a crossing are unfolded. Never changes once it has been made; holds no reference to the map.
class NETLISTDB_EXPORT Crossings {
  public:
    /// @throws std::logic_error when the source of @p map has been reset or imported anew.
    explicit Crossings(const ClockMap &map, const std::vector<ClockGroups> &groups = {});

    /// Sorted by the names of launch clock (none first) and capture clock, then by target, the bits of a vector by
    /// index; the same on every run.
    const std::vector<Crossing> &all() const & { return m_all; }
    std::vector<Crossing> all() && { return std::move(m_all); }

  private:
    std::vector<Crossing> m_all;
};

} // namespace kvr::netlistdb::analysis
