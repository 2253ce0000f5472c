#pragma once

#include <netlistdb/Export.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace kvr::netlistdb {
class DesignDatabase;
class IVDBInstance;
class IVDBNet;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::analysis {

/// How sure it is that a net of one form is a net of the other.
enum class ProbeGrade : std::uint8_t {
    Exact,      ///< it has the same name, and nothing contradicts
    Register,   ///< a register that behaves like this one
    Structural, ///< a net that computes the same from what is matched already
    Merged,     ///< equal to another elaborated net, with which it shares the post-map net
    Gone,       ///< no post-map net carries its value; the reason is known
    Unknown,    ///< not decided
};

/// Why no net carries the value of an elaborated net.
enum class GoneReason : std::uint8_t {
    None,            ///< of every grade but Gone
    Constant,        ///< it never changes, once reset
    Unused,          ///< nothing depends on it
    InLogic,         ///< inside a look-up table or another cell of logic
    InMemory,        ///< inside a memory
    InDsp,           ///< inside an arithmetic block
    InShiftRegister, ///< a stage inside a shift register
    Retimed,         ///< registers were moved through logic
};

/// The name in lower case: "exact", "register", and so on. A text for ever.
NETLISTDB_EXPORT const char *nameOf(ProbeGrade grade);
/// The name in lower case, words joined with "-": "constant", "in-logic", and so on. A text for ever.
NETLISTDB_EXPORT const char *nameOf(GoneReason reason);

/// A net of the other form that carries the value.
struct ProbeTarget {
    IVDBInstance *instance; ///< owned by the database
    IVDBNet *net;           ///< owned by the database
    bool inverted;          ///< it carries the inverse
};

/// What a net is in the other form.
struct ProbeMatch {
    ProbeGrade grade = ProbeGrade::Unknown;
    GoneReason reason = GoneReason::None;
    std::vector<ProbeTarget> targets; ///< those that fit best first; empty when it is gone or unknown
    std::string cell;                 ///< path of the cell that absorbed it; empty when there is none
    std::string evidence;             ///< a sentence for people
};

/// From the nets of the elaborated form to those of the post-map form, and back.
///
/// Names are where it begins, not what it rests on. Both netlists are simulated side by side, bit by bit, with the same
/// random inputs, first from reset and then with random values in all registers that correspond. What behaves
/// differently is never a match, whatever its name; what behaves alike is one without a name, when it was seen to
/// change often enough. Random values are no proof: two nets that differ in one of millions of states may pass for
/// equal. Cells whose function is not known (black boxes) are taken for the same cell in both forms when they have the
/// same name and type, or are the only ones of their type.
///
/// Built once, in time and memory in proportion to the unfolded design. Never changes: any number of threads may ask at
/// a time. The database must outlive it; once one of the sources has been reset or imported anew, every question is
/// refused. The same netlists give the same answers on every run.
class NETLISTDB_EXPORT CrossProbe {
  public:
    /// Matches the two sources of @p database.
    /// @throws std::invalid_argument when a source is not loaded, or the database keeps no source netlists;
    ///         std::length_error when the unfolded design has more than 2^32 nets.
    explicit CrossProbe(DesignDatabase &database);
    ~CrossProbe();
    CrossProbe(const CrossProbe &) = delete;
    CrossProbe &operator=(const CrossProbe &) = delete;
    CrossProbe(CrossProbe &&) noexcept;
    CrossProbe &operator=(CrossProbe &&) noexcept;

    // These throw std::logic_error "CrossProbe: the source has been reset or imported anew" when one has, and
    // std::invalid_argument when the net is none of that instance of the source. Nets inside a cell are unknown.

    /// What @p net of the elaborated form, seen in @p inst, is in the post-map form. Takes time in proportion to the
    /// answer and the depth of the instance.
    ProbeMatch find(const IVDBInstance *inst, const IVDBNet *net) const;
    /// What @p net of the post-map form, seen in @p inst, is in the elaborated form: the same pairs the other way
    /// round.
    ProbeMatch findBack(const IVDBInstance *inst, const IVDBNet *net) const;

    /// What it is made of. Internal type.
    struct State;

  private:
    std::unique_ptr<const State> m_state;
};

} // namespace kvr::netlistdb::analysis
