#pragma once

#include <netlistdb/analysis/ClockMap.h>
#include <netlistdb/analysis/CrossProbe.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace kvr::netlistdb {
class IVDBNetBase;
class IVDBNetBus;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::analysis {

/// Why a net may not be probed, or what to think of before it is. docs/probes.md explains each.
enum class ProbeReason : std::uint8_t {
    Protected,       ///< the source marks it as protected
    ExcludedMemory,  ///< a memory as a whole
    Constant,        ///< it never changes
    Undriven,        ///< nothing drives it
    PadSide,         ///< between an I/O cell and the package
    HardBlockPin,    ///< a pin of a block whose inside is not known, or a wire between hard blocks
    Absorbed,        ///< no net of the device carries it (needs both forms)
    Unmatched,       ///< not known which net of the device carries it (needs both forms)
    ClockNet,        ///< it is a clock
    Unused,          ///< nothing depends on it
    SeveralClocks,   ///< registers of several clocks reach it
    NoClock,         ///< registers of no clock reach it
    UnrelatedClocks, ///< bits of one bus belong to clocks that are not in step
};

/// Number of reasons.
constexpr std::size_t PROBE_REASONS = 13;

/// Whether a net or bus may be probed.
enum class ProbeVerdict : std::uint8_t {
    Ok,      ///< nothing is against it
    Warning, ///< it may, with something to think of
    Partly,  ///< some of its bits may
    No,
};

/// The name in lower case, words joined with "-": "protected", "clock-net", and so on. A text for ever.
NETLISTDB_EXPORT const char *nameOf(ProbeReason reason);
/// "ok", "warning", "partly" or "no". A text for ever.
NETLISTDB_EXPORT const char *nameOf(ProbeVerdict verdict);
/// A sentence for people, without full stop. A text for ever.
NETLISTDB_EXPORT const char *sentenceOf(ProbeReason reason);

/// A reason that holds for some bits of a net or bus.
struct ProbeFinding {
    ProbeReason reason;
    bool bars;                       ///< these bits may not be probed; otherwise a warning
    std::vector<std::uint32_t> bits; ///< their places among the bits asked for, in ascending order
    std::string evidence;            ///< what in the netlist shows it; empty when the sentence says all
    std::string instead;             ///< full name of a net to probe in its place; empty when none is known
};

/// One bit of a net or bus, as an analyser sees it.
struct ProbeBit {
    bool mayBeProbed = true;
    std::optional<ClockId> clock;      ///< to sample it with: the nearest that reaches it through a register
    std::uint8_t edges = 0;            ///< mask of ClockEdge: of that clock where it begins, on which the bit changes
    std::optional<ProbeMatch> match;   ///< what it is in the device, when both forms are given
    std::optional<ProbeTarget> target; ///< of those in match, the net to sample
    /// The net where the wire to sample begins, behind hierarchy, buffers and inverters, with the instance that it is
    /// seen in: bits with the same one are sampled once. Null for a bit that may not be probed; the instance also when
    /// the tree has no item for it.
    std::pair<const IVDBInstance *, const IVDBNet *> wire{};
};

/// What there is to say about probing one net or bus.
struct SignalReport {
    ProbeVerdict verdict = ProbeVerdict::No;
    std::vector<ProbeFinding> findings; ///< in order of the reasons
    std::vector<ProbeBit> bits;         ///< as asked for

    /// Number of bits that may be probed.
    NETLISTDB_EXPORT std::size_t probeable() const;
};

/// Whether nets may be probed by an analyser in the device, and if not, why.
///
/// Never says that a net may be probed that the database says is not selectable for the debugger. With one form, it
/// tells what that netlist shows. With both, nets are those of the elaborated form, and the device counts: what has no
/// net there cannot be probed.
///
/// Building it takes time in proportion to the I/O cells and hard blocks. Never changes: any number of threads may ask
/// at a time. What it was built from must outlive it.
class NETLISTDB_EXPORT ProbeReport {
  public:
    /// About the nets of the source of @p clocks.
    /// @throws std::logic_error when that source has been reset or imported anew.
    explicit ProbeReport(const ClockMap &clocks);
    /// About the nets of the elaborated form, in a device that @p postMapClocks and @p probe tell of.
    /// @throws std::invalid_argument when the maps are not of the elaborated and the post-map form.
    ProbeReport(const ClockMap &clocks, const ClockMap &postMapClocks, const CrossProbe &probe);
    ~ProbeReport();
    ProbeReport(const ProbeReport &) = delete;
    ProbeReport &operator=(const ProbeReport &) = delete;
    /// Takes over the other report, which may then only be assigned to or destroyed.
    ProbeReport(ProbeReport &&) noexcept;
    /// As the move constructor.
    ProbeReport &operator=(ProbeReport &&) noexcept;

    // These throw as ClockMap and CrossProbe do, and take time in proportion to the answer and, for clocks of which
    // both edges are used and for bits that no net carries, the logic up to the nearest register.

    /// About @p net, seen in @p inst.
    SignalReport of(const IVDBInstance *inst, IVDBNet *net) const;
    /// About the bits of @p bus, seen in @p inst, in the order of its nets.
    SignalReport of(const IVDBInstance *inst, const IVDBNetBus *bus) const;
    /// About nets that together are one signal, seen in @p inst. A null net is a bit that is tied to a constant. What
    /// @p whole, when it is not null, is refused for holds for all bits.
    SignalReport of(const IVDBInstance *inst, const std::vector<IVDBNet *> &bits, const IVDBNetBase *whole) const;

  private:
    struct State;
    std::unique_ptr<const State> m_state;
};

/// What one analyser core samples: all bits of one clock.
struct ProbeGroup {
    std::optional<ClockId> clock; ///< none: bits that the registers of no clock reach
    std::uint8_t edges = 0;       ///< mask of ClockEdge: those on which bits change
    std::uint64_t signals = 0;    ///< nets and buses that have bits in it
    std::uint64_t bits = 0;       ///< those that may be probed
    std::uint64_t wires = 0;      ///< different wires that they are: what the core has to sample
};

/// Adds up what is sampled with which clock. A bus whose bits have several clocks is in several groups. Takes memory in
/// proportion to the different wires.
class NETLISTDB_EXPORT ProbeGroups {
  public:
    /// Adds the bits of @p report that may be probed.
    void add(const SignalReport &report);
    /// By ClockId, that without a clock last; groups without bits are left out.
    const std::vector<ProbeGroup> &all() const { return m_groups; }

  private:
    std::vector<ProbeGroup> m_groups;
    struct WireHash {
        std::size_t operator()(const std::pair<const IVDBInstance *, const IVDBNet *> &wire) const
        {
            return std::hash<const void *>()(wire.first) * 31 + std::hash<const void *>()(wire.second);
        }
    };
    std::map<std::optional<ClockId>, std::unordered_set<std::pair<const IVDBInstance *, const IVDBNet *>, WireHash>>
        m_wires;
};

} // namespace kvr::netlistdb::analysis
