#pragma once

#include <netlistdb/IDesignDatabase.h>
#include <netlistdb/analysis/Clocks.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace kvr::netlistdb {
class DesignDatabase;
}

namespace kvr::netlistdb::analysis {

/// Every clock of every net of one source.
///
/// IDesignDatabase::findDrivingClockDomains returns the clock of the first register that it meets, and remembers it for
/// the nets that it passed. A ClockMap holds all clocks that reach a net, whatever was asked before, and can show the
/// way that each of them takes.
///
/// Both forms of netlist are followed alike: through logic, buffers, pads, latches and the hierarchy, back to
/// registers, ports of the top, black boxes and constants. Operators of the elaborated form are followed bit by bit
/// where they work bit by bit (bitwise operators, multiplexers, concatenations, slices, shifts by a constant, extension
/// of operands) and as a whole otherwise. Asynchronous set and reset of a register are captured by it and do not pass
/// through it.
///
/// Built once, in time and memory in proportion to the netlist, in which a module counts once, however many instances
/// it has. Never changes: any number of threads may ask at a time. The database must outlive it; once the source has
/// been reset or imported anew, every question is refused.
class NETLISTDB_EXPORT ClockMap {
  public:
    /// Builds the map of a source.
    /// @throws std::invalid_argument when the source is not loaded, or the database keeps no source netlists.
    /// @throws std::length_error when the netlist has more than 2^30 pins in one module or 2^28 clocks.
    ClockMap(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE source);
    ~ClockMap();
    ClockMap(const ClockMap &) = delete;
    ClockMap &operator=(const ClockMap &) = delete;
    /// Takes over the other map, which may then only be assigned to or destroyed.
    ClockMap(ClockMap &&) noexcept;
    /// As the move constructor.
    ClockMap &operator=(ClockMap &&) noexcept;

    // All of these throw std::logic_error "ClockMap: the source has been reset or imported anew" when it has; those
    // that take an instance and a net throw std::invalid_argument when the net is none of that instance of the source.
    // The inside of a black box is not known: its nets are reached by a black box, and reach one.

    /// All clocks, in byte order of their names. Owned by the map.
    const std::vector<Clock> &clocks() const;
    /// The clock that has @p name as its name or as one of its other names. Takes time in proportion to the clocks.
    std::optional<ClockId> find(std::string_view name) const;
    /// The clocks that @p net, seen in @p inst, can change with. Takes time in proportion to the answer and the depth
    /// of the instance.
    LaunchClocks launch(const IVDBInstance *inst, const IVDBNet *net) const;
    /// The clocks whose registers @p net, seen in @p inst, reaches.
    CaptureClocks capture(const IVDBInstance *inst, const IVDBNet *net) const;
    /// What @p net, seen in @p inst, is electrically: of a clock pin's net, the clock.
    ElectricalNet electrical(const IVDBInstance *inst, const IVDBNet *net) const;
    /// The chains that prove launch(): walks the fan-in of the net, nearest first, until all are found.
    LaunchProof why(const IVDBInstance *inst, const IVDBNet *net) const;
    /// Whether two clocks, both of clocks(), have an ancestor in common, or one is the other's ancestor: they are then
    /// in step, as far as the netlist tells.
    bool related(ClockId a, ClockId b) const;
    /// The unfolded nets by the clocks whose registers reach them. Walks the contexts in which modules are used: keep
    /// the result.
    NetCounts countNets() const;
    /// Bytes that the map holds.
    std::size_t memory() const;

    /// What the map is made of. Internal type.
    struct State;
    /// For the analyses that stand on the map.
    const State &state() const { return *m_state; }

  private:
    std::unique_ptr<const State> m_state;
};

/// The number of clocks that a ClockMap of the source has, without building the map.
/// @throws as the constructor of ClockMap
NETLISTDB_EXPORT std::size_t countClocks(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE source);

} // namespace kvr::netlistdb::analysis
