#pragma once

#include <netlistdb/IDesignDatabase.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace kvr::netlistdb {
class DesignDatabase;
class IVDBInstance;
class IVDBNet;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::analysis {

/// How a net is made, as numbers that another build of the design can be searched for. They do not depend on the name
/// of the net, nor on the order of anything.
struct NetFingerprint {
    /// The logic between the net, or the register that drives it, and the registers, ports and black boxes that it
    /// comes from, with their names; 0: not known.
    std::uint64_t near = 0;
    /// The cells over many levels behind the net, registers included, with the names of the ports of the top alone; 0:
    /// not known.
    std::uint64_t deep = 0;
    bool isOnly = false; ///< no other wire of the design has the same @c deep
};

/// A net seen in an instance.
struct SeenNet {
    IVDBInstance *instance; ///< owned by the database
    IVDBNet *net;           ///< owned by the database
};

/// The fingerprints of the nets of one source. What ports and buffers join is one wire, and has one fingerprint.
///
/// Equal @c near: both compute the same from signals of the same names, with the same controls, from the same start.
/// Equal @c deep: the same cells over 32 levels, which is no proof; ask for the only one that has it.
///
/// Built once, in time and memory in proportion to the unfolded design. Never changes: any number of threads may ask at
/// a time. The database must outlive it; once the source has been reset or imported anew, every question is refused.
class NETLISTDB_EXPORT NetFingerprints {
  public:
    /// Takes the fingerprints of a source.
    /// @throws std::invalid_argument when the source is not loaded, or the database keeps no source netlists;
    ///         std::length_error when the unfolded design has more than 2^32 nets.
    NetFingerprints(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE source);
    ~NetFingerprints();
    NetFingerprints(const NetFingerprints &) = delete;
    NetFingerprints &operator=(const NetFingerprints &) = delete;

    // These throw std::logic_error "NetFingerprints: the source has been reset or imported anew" when it has, and
    // std::invalid_argument when the net is none of that instance of the source.

    /// The fingerprint of @p net, seen in @p inst; without any number for constants, undriven nets and nets inside a
    /// cell. Takes constant time.
    NetFingerprint of(const IVDBInstance *inst, const IVDBNet *net) const;
    /// Mask of ClockEdge: the edges at which the registers sample that drive @p net, or reach it through logic, at the
    /// root of their clocks; 0 without any.
    std::uint8_t edgesOf(const IVDBInstance *inst, const IVDBNet *net) const;

    /// All nets on a wire.
    using Wire = std::vector<SeenNet>;
    /// The wires with the same @c near, in the order of the netlist. Takes time in proportion to the answer.
    std::vector<Wire> findNear(const NetFingerprint &wanted) const;
    /// The wires with the same @c deep, likewise.
    std::vector<Wire> findDeep(const NetFingerprint &wanted) const;

    /// What it is made of. Internal type.
    struct State;

  private:
    std::unique_ptr<const State> m_state;
};

} // namespace kvr::netlistdb::analysis
