#pragma once

#include <netlistdb/analysis/CrossProbe.h>
#include <netlistdb/analysis/NetFingerprints.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kvr::netlistdb::analysis {

/// What people wrote around a line of a plan.
struct PlanNotes {
    std::vector<std::string> above; ///< lines in front of it: comments with their "#", and empty ones
    std::string behind;             ///< comment at its end, with the "#"; empty when there is none
};

/// A clock that a probe changes with.
struct PlanClock {
    std::string name;       ///< as ClockMap has it
    std::uint8_t edges = 0; ///< mask of ClockEdge; 0: not known
    PlanNotes notes;        ///< around its line
};

/// One bit of a probe.
struct PlanBit {
    std::string name;                     ///< full name in the RTL
    std::optional<ProbeGrade> grade;      ///< none: no post-map netlist was at hand
    GoneReason reason = GoneReason::None; ///< of grade Gone
    std::string device;                   ///< full name of the post-map net that carries the value; empty: none
    bool isInverted = false;              ///< that net carries the inverse
    NetFingerprint fingerprint;           ///< in the elaborated netlist
    PlanNotes notes;                      ///< around its line
};

/// A net or bus that is to be probed.
struct PlanProbe {
    std::string name;              ///< as it was asked for
    std::vector<PlanClock> clocks; ///< that it changes with
    std::vector<PlanBit> bits;     ///< from left to right
    PlanNotes notes;               ///< around its first line
};

/// The text of a plan is wrong.
class NETLISTDB_EXPORT PlanError : public std::runtime_error {
  public:
    /// The fault in a line, counted from 1.
    PlanError(std::size_t line, const std::string &fault);
    /// The number of the line.
    std::size_t line() const { return m_line; }

  private:
    std::size_t m_line;
};

/// What somebody wants to see of a design while it runs: a text file for version control.
///
///     netlistdb-plan 1
///     # what the boot loader does
///     probe u_cpu/pc_q
///       clock clk_sys rise
///       bit u_cpu/pc_q[1] exact u_cpu.pc_q[1] 81c7f0d3a9b1e602.5f9e0c1d22b4a871
///       bit u_cpu/pc_q[0] structural:inverted $abc$12$n7 -
///
/// Words are separated by blanks. A word with blanks, control characters, `"`, `#` or `\` in it stands in quotes, in
/// which `\"`, `\\`, `\n`, `\t` and `\xHH` are characters. `#` where a word could begin starts a comment. The words of
/// a bit are its name, its grade (`none` without a post-map netlist), the post-map net and the fingerprint; `-` where
/// there is none.
struct NETLISTDB_EXPORT ProbePlan {
    std::vector<PlanProbe> probes; ///< in the order in which they stand
    std::vector<std::string> head; ///< comments and empty lines in front of the line with the version
    std::vector<std::string> tail; ///< those behind the last probe

    /// Reads the text of a plan.
    /// @throws PlanError
    static ProbePlan parse(std::string_view text);
    /// The text: what parse() reads as the same plan, the comments where they were.
    std::string text() const;
};

/// What became of a probe in another build.
enum class PlanVerdict : std::uint8_t {
    Kept,         ///< all as it was
    Renamed,      ///< the RTL has it under another name
    ClockChanged, ///< it is sampled by another clock, or at another edge
    Split,        ///< what was one vector or one net is in several
    Lost,         ///< some bit is not there, or no net of the device carries it
};

/// The name in lower case, words joined with "-": "kept", "clock-changed", and so on. A text for ever.
NETLISTDB_EXPORT const char *nameOf(PlanVerdict verdict);

/// A bit of a plan in another build. Its name is empty when it was not found, its grade none when no post-map netlist
/// is at hand.
struct RebuiltBit {
    PlanBit bit;     ///< as it is there
    std::string why; ///< why it was not found, or what speaks for the answer
};

/// A probe of a plan in another build: the same bits in the same order.
struct RebuiltProbe {
    std::vector<PlanClock> clocks; ///< of the bits that were found
    std::vector<RebuiltBit> bits;  ///< one for each of the plan
};

/// One thing that is to be said of a probe.
struct PlanFinding {
    PlanVerdict verdict; ///< what happened
    std::string text;    ///< what it was and what it is
};

/// What became of @p before: the gravest finding first, and at least one.
NETLISTDB_EXPORT std::vector<PlanFinding> findChanges(const PlanProbe &before, const RebuiltProbe &now);

/// Puts what became of the probe at place @p at of @p plan in its place, comments kept. A probe that is split becomes
/// one for each vector, side by side. Bits that were not found stay as they were. Returns the number of probes that
/// stand there.
NETLISTDB_EXPORT std::size_t updateProbe(ProbePlan &plan, std::size_t at, const RebuiltProbe &now);

} // namespace kvr::netlistdb::analysis
