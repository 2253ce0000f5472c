#include "analysis/probe/Absorption.h"

namespace kvr::netlistdb::analysis::probe {

namespace {

constexpr std::size_t LONGEST_WAY = 400; ///< wires that are looked at for one cell

} // namespace

Absorption::Absorption(const BitGraph &elaborated, const BitGraph &postMap, const std::vector<Signal> &target)
    : m_elaborated(elaborated), m_postMap(postMap), m_target(target), m_users(elaborated),
      m_seen(elaborated.signalCount, 0)
{
}

/// The node that computes a post-map wire; where that is a flip-flop, the one in front of it.
std::uint32_t Absorption::logicInFrontOf(Signal postMap) const
{
    const std::uint32_t driver = m_postMap.drivers[postMap];
    if (driver == NONE || m_postMap.partOf(m_postMap.nodes[driver]).op != Op::FlipFlop) {
        return driver;
    }
    return m_postMap.drivers[m_postMap.inputsOf(m_postMap.nodes[driver])[4]];
}

/// A register cannot be inside logic.
GoneReason Absorption::reasonOf(std::uint32_t node, bool wasRegister) const
{
    switch (m_postMap.recipeOf(m_postMap.nodes[node]).kind) {
    case CellKind::ShiftRegister:
        return GoneReason::InShiftRegister;
    case CellKind::Dsp:
        return GoneReason::InDsp;
    case CellKind::Memory:
        return GoneReason::InMemory;
    case CellKind::FlipFlop:
        return GoneReason::None;
    default:
        return wasRegister ? GoneReason::None : GoneReason::InLogic;
    }
}

Absorption::Cell Absorption::cellWith(Signal elaborated)
{
    const bool wasRegister = m_elaborated.isRegister(elaborated);
    ++m_turn;
    m_seen[elaborated] = m_turn;
    m_open.assign(1, elaborated);
    for (std::size_t at = 0; at < m_open.size() && at < LONGEST_WAY; ++at) {
        for (const std::uint32_t user : m_users[m_open[at]]) {
            const Node &node = m_elaborated.nodes[user];
            if (m_elaborated.partOf(node).op == Op::MemoryWrite) {
                continue;
            }
            for (const Signal output : m_elaborated.outputsOf(node)) {
                if (m_seen[output] == m_turn) {
                    continue;
                }
                m_seen[output] = m_turn;
                const Signal target = m_target[output];
                if (target == NONE) {
                    m_open.push_back(output);
                    continue;
                }
                const std::uint32_t absorber = wasRegister ? m_postMap.drivers[target] : logicInFrontOf(target);
                const GoneReason reason = absorber != NONE ? reasonOf(absorber, wasRegister) : GoneReason::None;
                if (reason != GoneReason::None) {
                    return {absorber, reason};
                }
            }
        }
    }
    return {};
}

} // namespace kvr::netlistdb::analysis::probe
