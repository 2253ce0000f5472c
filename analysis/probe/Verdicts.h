#pragma once

#include "analysis/probe/Correspondence.h"

#include <netlistdb/analysis/CrossProbe.h>

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis::probe {

/// A pair of wires that carry the same value, or the inverse.
struct Match {
    WirePair wires;
    bool inverted;
    bool byName;
};

/// What became of an elaborated wire.
struct Verdict {
    ProbeGrade grade = ProbeGrade::Unknown;
    GoneReason reason = GoneReason::None;
    bool value = false;        ///< of a constant
    bool isKnown = false;      ///< nothing unknown reached it
    bool wasSeen = false;      ///< and it was seen to change often enough
    std::uint32_t node = NONE; ///< of the post-map netlist: whose cell absorbed it
};

/// Draws the conclusions from a correspondence.
class Verdicts {
  public:
    Verdicts(const BitGraph &elaborated, const BitGraph &postMap, const Correspondence &correspondence);

    /// By elaborated wire, the best first.
    std::vector<Match> takeMatches() { return std::move(m_matches); }
    /// By elaborated wire.
    std::vector<Verdict> takeVerdicts() { return std::move(m_verdicts); }

  private:
    using Side = Correspondence::Side;
    struct Keyed {
        std::uint64_t hash;
        Signal signal;
        bool operator<(const Keyed &other) const { return hash < other.hash; }
    };

    void markNets();
    void markAnchored(Side side, const BitGraph &graph, const std::vector<std::uint8_t> &constants);
    void indexPostMap();
    void matchNames();
    void matchEqual();
    void grade();
    void explain();
    bool isRegister(Signal signal) const { return m_elaborated.isRegister(signal); }
    bool wasSeen(Side side, Signal signal) const;
    /// Whether the two were equal, or inverse, from reset on, as far as that is known.
    bool agreesFromReset(Signal elaborated, Signal postMap, bool inverted) const;
    bool wasAlone(Signal elaborated) const;

    const BitGraph &m_elaborated;
    const BitGraph &m_postMap;
    const Correspondence &m_correspondence;
    std::vector<bool> m_hasNet[2];
    std::vector<bool> m_anchored[2];
    std::vector<Keyed> m_index;
    std::vector<std::uint64_t> m_fromReset; ///< hashes of the post-map wires, sorted
    std::vector<Match> m_matches;
    std::vector<Verdict> m_verdicts;
    std::vector<Signal> m_target;          ///< by elaborated wire: the best match, or NONE
    std::vector<std::uint8_t> m_constants; ///< of the elaborated wires
};

} // namespace kvr::netlistdb::analysis::probe
