#include "analysis/Proof.h"

#include "analysis/BoundSets.h"
#include "analysis/Chain.h"
#include "analysis/FanIn.h"

#include <algorithm>

namespace kvr::netlistdb::analysis {

namespace {

class Prover {
  public:
    Prover(const ClockMap::State &map, const Place &place) : m_map(map), m_walk(map.design, place), m_chains(map.design)
    {
        const BoundSet bound = boundLaunch(map.design, place.context, place.net);
        m_flags = bound.flags;
        for (const BoundClock &each : bound.clocks) {
            if (map.table.idOf(each.clock) != NONE) {
                ++m_missing;
            }
        }
        for (std::uint32_t flag = 1; flag <= REACHED_BY_LOOP; flag *= 2) {
            m_missing += (m_flags & flag) != 0 && flag != REACHED_BY_LOOP ? 1 : 0;
        }
    }

    LaunchProof prove()
    {
        while (m_missing > 0 && m_walk.step()) {
            for (; m_seen < m_walk.ends().size(); ++m_seen) {
                add(m_walk.ends()[m_seen]);
            }
        }
        if ((m_flags & REACHED_BY_LOOP) != 0) {
            const std::uint32_t node = m_walk.nearestLoop();
            if (node != NONE) {
                m_proof.ends.push_back({REACHED_BY_LOOP, m_chains.data(m_walk, node, {})});
            }
        }
        const auto nearer = [](const ClockChain &a, const ClockChain &b) {
            return a.cells != b.cells ? a.cells < b.cells : a.clock < b.clock;
        };
        std::sort(m_proof.clocks.begin(), m_proof.clocks.end(), nearer);
        std::sort(m_proof.networks.begin(), m_proof.networks.end(), nearer);
        std::sort(m_proof.ends.begin(), m_proof.ends.end(),
                  [](const EndChain &a, const EndChain &b) { return a.end < b.end; });
        return std::move(m_proof);
    }

  private:
    void add(const FanIn::End &end)
    {
        if (end.clock == NONE) {
            const auto isThere = [&](const EndChain &chain) { return chain.end == end.flag; };
            if (std::none_of(m_proof.ends.begin(), m_proof.ends.end(), isThere)) {
                m_proof.ends.push_back({static_cast<Reaching>(end.flag), m_chains.data(m_walk, end.node, end.way)});
                --m_missing;
            }
            return;
        }
        const ClockId clock = m_map.table.idOf(end.clock);
        std::vector<ClockChain> &chains = end.isNetwork ? m_proof.networks : m_proof.clocks;
        const auto isThere = [&](const ClockChain &chain) { return chain.clock == clock; };
        if (clock == NONE || std::any_of(chains.begin(), chains.end(), isThere)) {
            return;
        }
        const FanIn::Node &node = m_walk.nodes()[end.node];
        ClockChain chain{clock, node.cells, m_chains.data(m_walk, end.node, end.way), {}};
        if (!end.isNetwork) {
            chain.clockToRoot = m_chains.clock({m_walk.contexts().path(node.context), end.clockNet});
        }
        chains.push_back(std::move(chain));
        --m_missing;
    }

    const ClockMap::State &m_map;
    FanIn m_walk;
    ChainWriter m_chains;
    LaunchProof m_proof;
    std::uint32_t m_flags = 0;
    std::size_t m_missing = 0;
    std::size_t m_seen = 0;
};

} // namespace

LaunchProof prove(const ClockMap::State &map, const Place &place)
{
    return Prover(map, place).prove();
}

} // namespace kvr::netlistdb::analysis
