#include "analysis/probe/Verdicts.h"

#include <algorithm>
#include <unordered_map>

namespace kvr::netlistdb::analysis::probe {

namespace {

constexpr unsigned LEAST_ACTIVITY = 6;   ///< runs in which a wire must have been 0, and 1, for its behaviour to tell it
constexpr std::size_t LONGEST_WAY = 400; ///< wires that are looked at for the cell that absorbed another

} // namespace

Verdicts::Verdicts(const BitGraph &elaborated, const BitGraph &postMap, const Correspondence &correspondence)
    : m_elaborated(elaborated), m_postMap(postMap), m_correspondence(correspondence)
{
    m_verdicts.resize(elaborated.signalCount);
    m_target.assign(elaborated.signalCount, NONE);
    markNets();
    markAnchored(Correspondence::ELABORATED, elaborated);
    markAnchored(Correspondence::POST_MAP, postMap);
    indexPostMap();
    matchNames();
    matchEqual();
    grade();
    markUsed();
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
void Verdicts::markAnchored(Side side, const BitGraph &graph)
{
    const Simulator &simulator = m_correspondence.simulator(side);
    const std::vector<std::uint8_t> constants = constantsOf(graph, simulator);
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

bool Verdicts::isRegister(Signal signal) const
{
    const std::uint32_t driver = m_elaborated.drivers[signal];
    return driver != NONE && !m_elaborated.partOf(m_elaborated.nodes[driver]).isLogic();
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
    for (Signal signal = FIRST_SIGNAL; signal < m_postMap.signalCount; ++signal) {
        const Signatures &fromReset = m_correspondence.fromReset(Correspondence::POST_MAP);
        if (m_hasNet[1][signal] && fromReset.isKnown(signal)) {
            m_fromReset.push_back(fromReset.hash(signal));
        }
    }
    std::sort(m_fromReset.begin(), m_fromReset.end());
}

/// Whether no post-map wire was equal to the elaborated one from reset on. Two that differ in states alone that were
/// not reached from reset may be one for all that a user ever sees.
bool Verdicts::wasAlone(Signal elaborated) const
{
    const Signatures &fromReset = m_correspondence.fromReset(Correspondence::ELABORATED);
    return fromReset.isKnown(elaborated) &&
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
            const bool hasAnchors = isRegister(signal) || (m_anchored[0][signal] && m_anchored[1][other->signal]);
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
    // Of one wire, pairs of one name first, and straight ones before inverted ones.
    std::stable_sort(m_matches.begin(), m_matches.end(), [](const Match &a, const Match &b) {
        if (a.wires.elaborated != b.wires.elaborated) {
            return a.wires.elaborated < b.wires.elaborated;
        }
        return a.byName != b.byName ? a.byName : !a.inverted && b.inverted;
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
        m_verdicts[own].grade = match.byName                         ? ProbeGrade::Exact
                                : owners[match.wires.postMap] != own ? ProbeGrade::Merged
                                : isRegister(own)                    ? ProbeGrade::Register
                                                                     : ProbeGrade::Structural;
    }
}

/// Wires that outputs of the top and black boxes depend on.
void Verdicts::markUsed()
{
    m_isUsed.assign(m_elaborated.signalCount, false);
    std::vector<Signal> open;
    const auto use = [&](Signal signal) {
        if (!m_isUsed[signal]) {
            m_isUsed[signal] = true;
            open.push_back(signal);
        }
    };
    for (const TopPort &port : m_elaborated.ports) {
        if (port.isOutput) {
            use(port.signal);
        }
    }
    for (const OpaqueCell &cell : m_elaborated.opaque) {
        for (const std::uint32_t net : m_elaborated.moduleOf(cell.occurrence).netsOf(cell.cell)) {
            use(m_elaborated.signalOf(cell.occurrence, net));
        }
    }
    std::vector<std::vector<std::uint32_t>> writers(m_elaborated.memories.size());
    for (std::uint32_t number = 0; number < m_elaborated.nodes.size(); ++number) {
        const Op op = m_elaborated.partOf(m_elaborated.nodes[number]).op;
        if (op == Op::MemoryWrite || op == Op::MemoryStart) {
            writers[m_elaborated.nodes[number].state].push_back(number);
        }
    }
    const auto useNode = [&](const Node &node) {
        const Part &part = m_elaborated.partOf(node);
        const Span<Signal> in = m_elaborated.inputsOf(node);
        if (part.op == Op::FlipFlop && !part.has(PART_LOADS) && !part.has(PART_SETS_CLEARS)) {
            const Span<Signal> out = m_elaborated.outputsOf(node);
            for (std::size_t at = 0; at < 4; ++at) {
                use(in[at]);
            }
            for (std::size_t bit = 0; bit < part.width; ++bit) {
                if (m_isUsed[out[bit]]) {
                    use(in[4 + bit]);
                }
            }
            return;
        }
        std::for_each(in.begin(), in.end(), use);
        if (part.op == Op::MemoryRead || part.op == Op::ClockedRead) {
            for (const std::uint32_t writer : writers[node.state]) {
                const Span<Signal> written = m_elaborated.inputsOf(m_elaborated.nodes[writer]);
                std::for_each(written.begin(), written.end(), use);
            }
        }
    };
    while (!open.empty()) {
        const std::uint32_t driver = m_elaborated.drivers[open.back()];
        open.pop_back();
        if (driver != NONE) {
            useNode(m_elaborated.nodes[driver]);
            const Node &node = m_elaborated.nodes[driver];
            if (m_elaborated.partOf(node).op == Op::ShiftOutput) {
                for (std::uint32_t at = driver; at-- > 0 && m_elaborated.nodes[at].cell == node.cell;) {
                    useNode(m_elaborated.nodes[at]);
                }
            }
        }
    }
}

void Verdicts::explain()
{
    const std::vector<std::uint8_t> constants =
        constantsOf(m_elaborated, m_correspondence.simulator(Correspondence::ELABORATED));
    m_firstUser.assign(m_elaborated.signalCount + 1, 0);
    for (const Node &node : m_elaborated.nodes) {
        for (const Signal input : m_elaborated.inputsOf(node)) {
            ++m_firstUser[input + 1];
        }
    }
    for (std::size_t signal = 0; signal < m_elaborated.signalCount; ++signal) {
        m_firstUser[signal + 1] += m_firstUser[signal];
    }
    m_users.resize(m_firstUser.back());
    std::vector<std::uint32_t> next(m_firstUser.begin(), m_firstUser.end() - 1);
    for (std::uint32_t number = 0; number < m_elaborated.nodes.size(); ++number) {
        for (const Signal input : m_elaborated.inputsOf(m_elaborated.nodes[number])) {
            m_users[next[input]++] = number;
        }
    }
    for (Signal signal = 0; signal < m_elaborated.signalCount; ++signal) {
        Verdict &verdict = m_verdicts[signal];
        verdict.wasSeen = signal >= FIRST_SIGNAL && wasSeen(Correspondence::ELABORATED, signal);
        verdict.isKnown = m_correspondence.everywhere(Correspondence::ELABORATED).isKnown(signal);
        if (verdict.grade != ProbeGrade::Unknown) {
            continue;
        }
        if (constants[signal] != 2) {
            verdict.grade = ProbeGrade::Gone;
            verdict.reason = GoneReason::Constant;
            verdict.value = constants[signal] == 1;
        } else if (signal >= FIRST_SIGNAL && m_hasNet[0][signal] && wasSeen(Correspondence::ELABORATED, signal)) {
            if (!isUsed(signal)) {
                verdict.grade = ProbeGrade::Gone;
                verdict.reason = GoneReason::Unused;
            } else if (wasAlone(signal)) {
                explainAbsorbed(signal);
            }
        }
    }
}

/// The cell that computes a post-map wire; where that is a register, the one in front of it.
std::uint32_t Verdicts::absorberOf(Signal postMap) const
{
    const std::uint32_t driver = m_postMap.drivers[postMap];
    if (driver == NONE || m_postMap.partOf(m_postMap.nodes[driver]).op != Op::FlipFlop) {
        return driver;
    }
    return m_postMap.drivers[m_postMap.inputsOf(m_postMap.nodes[driver])[4]];
}

/// Goes forward from a wire that no post-map wire equals to the first ones that have a match: what computes these there
/// has taken it in.
void Verdicts::explainAbsorbed(Signal signal)
{
    const bool wasRegister = isRegister(signal);
    std::vector<Signal> open{signal};
    std::unordered_map<Signal, bool> seen{{signal, true}};
    for (std::size_t at = 0; at < open.size() && at < LONGEST_WAY; ++at) {
        for (std::uint32_t user = m_firstUser[open[at]]; user < m_firstUser[open[at] + 1]; ++user) {
            const Node &node = m_elaborated.nodes[m_users[user]];
            if (m_elaborated.partOf(node).op == Op::MemoryWrite) {
                continue;
            }
            for (const Signal output : m_elaborated.outputsOf(node)) {
                if (!seen.emplace(output, true).second) {
                    continue;
                }
                if (m_target[output] == NONE) {
                    open.push_back(output);
                    continue;
                }
                const std::uint32_t absorber =
                    wasRegister ? m_postMap.drivers[m_target[output]] : absorberOf(m_target[output]);
                if (absorber == NONE) {
                    continue;
                }
                const CellKind kind = m_postMap.recipeOf(m_postMap.nodes[absorber]).kind;
                GoneReason reason = GoneReason::None;
                if (kind == CellKind::ShiftRegister || kind == CellKind::Dsp || kind == CellKind::Memory) {
                    reason = kind == CellKind::ShiftRegister ? GoneReason::InShiftRegister
                             : kind == CellKind::Dsp         ? GoneReason::InDsp
                                                             : GoneReason::InMemory;
                } else if (!wasRegister && kind != CellKind::FlipFlop) {
                    reason = GoneReason::InLogic;
                }
                if (reason != GoneReason::None) {
                    m_verdicts[signal].grade = ProbeGrade::Gone;
                    m_verdicts[signal].reason = reason;
                    m_verdicts[signal].node = absorber;
                    return;
                }
            }
        }
    }
    if (wasRegister && !m_correspondence.isInClass(Correspondence::ELABORATED, signal)) {
        m_verdicts[signal].grade = ProbeGrade::Gone;
        m_verdicts[signal].reason = GoneReason::Retimed;
    }
}

} // namespace kvr::netlistdb::analysis::probe
