#include "analysis/probe/Verdicts.h"

#include "analysis/probe/Absorption.h"
#include "analysis/probe/Constants.h"
#include "analysis/probe/UsedWires.h"

#include <algorithm>

namespace kvr::netlistdb::analysis::probe {

namespace {

constexpr unsigned LEAST_ACTIVITY = 6; ///< runs in which a wire must have been 0, and 1, for its behaviour to tell it

} // namespace

Verdicts::Verdicts(const BitGraph &elaborated, const BitGraph &postMap, const Correspondence &correspondence)
    : m_elaborated(elaborated), m_postMap(postMap), m_correspondence(correspondence)
{
    m_verdicts.resize(elaborated.signalCount);
    m_target.assign(elaborated.signalCount, NONE);
    markNets();
    m_constants = constantsOf(elaborated, correspondence.simulator(Correspondence::ELABORATED));
    markAnchored(Correspondence::ELABORATED, elaborated, m_constants);
    markAnchored(Correspondence::POST_MAP, postMap,
                 constantsOf(postMap, correspondence.simulator(Correspondence::POST_MAP)));
    indexPostMap();
    matchNames();
    matchEqual();
    grade();
    explain();
}

void Verdicts::markNets()
{
    for (const BitGraph *graph : {&m_elaborated, &m_postMap}) {
        std::vector<bool> &hasNet = m_hasNet[graph == &m_elaborated ? 0 : 1];
        hasNet.assign(graph->signalCount, false);
        for (const Signal signal : graph->signals) {
            hasNet[signal] = signal >= FIRST_SIGNAL;
        }
    }
}

/// Wires that depend on inputs, memories and matched registers alone. Others may have seen too few of the values that
/// registers without a match can have.
void Verdicts::markAnchored(Side side, const BitGraph &graph, const std::vector<std::uint8_t> &constants)
{
    const Simulator &simulator = m_correspondence.simulator(side);
    std::vector<bool> &anchored = m_anchored[side];
    anchored.assign(graph.signalCount, true);
    for (const Signal signal : simulator.registers()) {
        anchored[signal] =
            m_correspondence.isInClass(side, signal) || simulator.isControl()[signal] || constants[signal] != 2;
    }
    for (const std::uint32_t number : simulator.order()) {
        const Node &node = graph.nodes[number];
        const Span<Signal> in = graph.inputsOf(node);
        const bool all = std::all_of(in.begin(), in.end(), [&](Signal input) { return anchored[input]; });
        for (const Signal output : graph.outputsOf(node)) {
            anchored[output] = anchored[output] && all;
        }
    }
}

bool Verdicts::wasSeen(Side side, Signal signal) const
{
    const Signatures &everywhere = m_correspondence.everywhere(side);
    return everywhere.isKnown(signal) && everywhere.activity(signal) >= LEAST_ACTIVITY;
}

void Verdicts::indexPostMap()
{
    for (Signal signal = FIRST_SIGNAL; signal < m_postMap.signalCount; ++signal) {
        if (m_hasNet[1][signal] && wasSeen(Correspondence::POST_MAP, signal)) {
            m_index.push_back({m_correspondence.everywhere(Correspondence::POST_MAP).hash(signal), signal});
        }
    }
    std::stable_sort(m_index.begin(), m_index.end());
    const Signatures &fromReset = m_correspondence.fromReset(Correspondence::POST_MAP);
    for (Signal signal = FIRST_SIGNAL; signal < m_postMap.signalCount; ++signal) {
        if (m_hasNet[1][signal] && fromReset.isKnown(signal)) {
            m_fromReset.push_back(fromReset.hash(signal));
        }
    }
    std::sort(m_fromReset.begin(), m_fromReset.end());
}

/// Whether no post-map wire was equal to the elaborated one from reset on. Two that differ in states alone that were
/// not reached from reset may be one for all that a user ever sees. One that hardly changed shows too little.
bool Verdicts::wasAlone(Signal elaborated) const
{
    const Signatures &fromReset = m_correspondence.fromReset(Correspondence::ELABORATED);
    return fromReset.isKnown(elaborated) && fromReset.activity(elaborated) >= LEAST_ACTIVITY &&
           !std::binary_search(m_fromReset.begin(), m_fromReset.end(), fromReset.hash(elaborated));
}

bool Verdicts::agreesFromReset(Signal elaborated, Signal postMap, bool inverted) const
{
    const Signatures &left = m_correspondence.fromReset(Correspondence::ELABORATED);
    const Signatures &right = m_correspondence.fromReset(Correspondence::POST_MAP);
    if (!left.isKnown(elaborated) || !right.isKnown(postMap)) {
        return true;
    }
    return left.hash(elaborated) == right.hash(postMap) &&
           (left.isInverted(elaborated) != right.isInverted(postMap)) == inverted;
}

/// A name counts unless the two ever differed from reset on. States that are never reached may tell them apart only
/// when they were seen to change from reset on.
void Verdicts::matchNames()
{
    const Signatures &left = m_correspondence.fromReset(Correspondence::ELABORATED);
    for (const WirePair &pair : m_correspondence.names().wires) {
        const Correspondence::NameVerdict verdict = m_correspondence.verdictOf(pair);
        const bool wasActive = left.isKnown(pair.elaborated) && left.activity(pair.elaborated) >= LEAST_ACTIVITY;
        if (!verdict.differedFromReset && (!verdict.differedEverywhere || wasActive)) {
            m_matches.push_back({pair, false, true});
        }
    }
}

void Verdicts::matchEqual()
{
    const Signatures &left = m_correspondence.everywhere(Correspondence::ELABORATED);
    const Signatures &right = m_correspondence.everywhere(Correspondence::POST_MAP);
    for (Signal signal = FIRST_SIGNAL; signal < m_elaborated.signalCount; ++signal) {
        if (!m_hasNet[0][signal] || !wasSeen(Correspondence::ELABORATED, signal)) {
            continue;
        }
        const auto range = std::equal_range(m_index.begin(), m_index.end(), Keyed{left.hash(signal), 0});
        for (auto other = range.first; other != range.second; ++other) {
            const bool inverted = left.isInverted(signal) != right.isInverted(other->signal);
            const bool areRegisters = isRegister(signal) && m_postMap.isRegister(other->signal);
            const bool hasAnchors = areRegisters || (m_anchored[0][signal] && m_anchored[1][other->signal]);
            if (hasAnchors && m_correspondence.areCompatible(signal, other->signal) &&
                agreesFromReset(signal, other->signal, inverted)) {
                m_matches.push_back({{signal, other->signal}, inverted, false});
            }
        }
    }
    std::stable_sort(m_matches.begin(), m_matches.end(), [](const Match &a, const Match &b) {
        return a.wires == b.wires ? a.byName && !b.byName : a.wires < b.wires;
    });
    m_matches.erase(std::unique(m_matches.begin(), m_matches.end(),
                                [](const Match &a, const Match &b) { return a.wires == b.wires; }),
                    m_matches.end());
    // Of one wire, pairs of one name first, then registers, and straight ones before inverted ones.
    std::stable_sort(m_matches.begin(), m_matches.end(), [this](const Match &a, const Match &b) {
        if (a.wires.elaborated != b.wires.elaborated) {
            return a.wires.elaborated < b.wires.elaborated;
        }
        const auto rankOf = [&](const Match &match) {
            return (match.byName ? 0 : 4) + (m_postMap.isRegister(match.wires.postMap) ? 0 : 2) +
                   (match.inverted ? 1 : 0);
        };
        return rankOf(a) < rankOf(b);
    });
}

void Verdicts::grade()
{
    // The elaborated wire that a post-map wire belongs to first of all: that of its name, then a register.
    std::vector<Signal> owners(m_postMap.signalCount, NONE);
    for (const int turn : {0, 1, 2}) {
        for (std::size_t at = 0; at < m_matches.size(); ++at) {
            const Match &match = m_matches[at];
            const Signal own = match.wires.elaborated;
            const bool isFirst = at == 0 || m_matches[at - 1].wires.elaborated != own;
            const bool counts = turn == 0 ? match.byName : turn == 1 ? isRegister(own) : true;
            if (isFirst) {
                m_target[own] = match.wires.postMap;
            }
            if (isFirst && counts && owners[match.wires.postMap] == NONE) {
                owners[match.wires.postMap] = own;
            }
        }
    }
    for (std::size_t at = 0; at < m_matches.size(); ++at) {
        const Match &match = m_matches[at];
        const Signal own = match.wires.elaborated;
        if (at > 0 && m_matches[at - 1].wires.elaborated == own) {
            continue;
        }
        m_verdicts[own].grade = match.byName                                                   ? ProbeGrade::Exact
                                : owners[match.wires.postMap] != own                           ? ProbeGrade::Merged
                                : isRegister(own) && m_postMap.isRegister(match.wires.postMap) ? ProbeGrade::Register
                                                                                               : ProbeGrade::Structural;
    }
}

void Verdicts::explain()
{
    const std::vector<bool> isUsed = usedWires(m_elaborated);
    Absorption absorption(m_elaborated, m_postMap, m_target);
    for (Signal signal = 0; signal < m_elaborated.signalCount; ++signal) {
        Verdict &verdict = m_verdicts[signal];
        verdict.wasSeen = signal >= FIRST_SIGNAL && wasSeen(Correspondence::ELABORATED, signal);
        verdict.isKnown = m_correspondence.everywhere(Correspondence::ELABORATED).isKnown(signal);
        if (verdict.grade != ProbeGrade::Unknown) {
            continue;
        }
        if (m_constants[signal] != 2) {
            verdict.reason = GoneReason::Constant;
            verdict.value = m_constants[signal] == 1;
        } else if (verdict.wasSeen && m_hasNet[0][signal]) {
            if (!isUsed[signal]) {
                verdict.reason = GoneReason::Unused;
            } else if (wasAlone(signal)) {
                const Absorption::Cell cell = absorption.cellWith(signal);
                verdict.node = cell.node;
                verdict.reason = cell.reason != GoneReason::None || !isRegister(signal) ||
                                         m_correspondence.isInClass(Correspondence::ELABORATED, signal)
                                     ? cell.reason
                                     : GoneReason::Retimed;
            }
        }
        if (verdict.reason != GoneReason::None) {
            verdict.grade = ProbeGrade::Gone;
        }
    }
}

} // namespace kvr::netlistdb::analysis::probe
