#include "analysis/LaunchCounts.h"

#include <map>
#include <utility>

namespace kvr::netlistdb::analysis {

namespace {

/// Walks all occurrences of all modules, with what comes in through the ports of each.
class LaunchCounter {
  public:
    LaunchCounter(const DesignModel &design, const ClockTable &table) : m_design(design), m_table(table)
    {
        for (const ModuleSets &sets : design.sets) {
            std::map<std::uint32_t, std::uint64_t> nets;
            for (const SetTable::Ref set : sets.launch) {
                ++nets[set.set];
            }
            m_netsOfSets.emplace_back(nets.begin(), nets.end());
        }
    }

    NetCounts count()
    {
        m_open.push_back({m_design.topLevel(), {}, {}, {}, 0});
        enter(m_open.back());
        while (!m_open.empty()) {
            Occurrence &at = m_open.back();
            if (at.nextSub == m_design.hierarchy.modules[at.level.module].subs.size()) {
                m_open.pop_back();
                continue;
            }
            const std::uint32_t sub = at.nextSub++;
            Occurrence next = below(at, sub);
            enter(next);
            m_open.push_back(std::move(next));
        }
        NetCounts result;
        result.launched.resize(m_table.clocks().size());
        for (std::uint32_t set = 0; set < m_nets.size(); ++set) {
            result.nets += m_nets[set];
            if (m_sets[set].empty()) {
                result.withoutClock += m_nets[set];
            }
            for (const SetTable::Entry &entry : m_sets[set]) {
                result.launched[entry.atom.number()] += m_nets[set];
            }
        }
        return result;
    }

  private:
    /// Sets here are sets of ClockIds, in m_sets.
    struct Occurrence {
        Level level;
        std::vector<std::uint32_t> ports;  ///< by port: the clocks that come in
        std::vector<ClockId> clockPorts;   ///< by port: the clock that it is; NONE for none
        std::vector<std::uint32_t> ofSets; ///< by set of the module
        std::uint32_t nextSub;
    };

    std::uint32_t single(ClockId clock) { return clock != NONE ? m_sets.intern(Atom(Atom::Launched, clock)).set : 0; }

    /// Works out every set of the module in this occurrence, and counts its nets.
    void enter(Occurrence &at)
    {
        const SetTable &table = m_design.sets[at.level.module].launchTable;
        at.ofSets.assign(table.size(), 0);
        for (const auto &[set, nets] : m_netsOfSets[at.level.module]) {
            SetTable::Ref clocks;
            for (const SetTable::Entry &entry : table[set]) {
                const std::uint32_t number = entry.atom.number();
                std::uint32_t more = 0;
                switch (entry.atom.kind()) {
                case Atom::Launched:
                    more = single(m_table.idOf(at.level.firstClock + number));
                    break;
                case Atom::LaunchedByPort:
                    more = single(at.clockPorts[number]);
                    break;
                case Atom::InputPort:
                    more = at.ports[number];
                    break;
                default:
                    break;
                }
                clocks = m_sets.merge(clocks, {more, 0});
            }
            at.ofSets[set] = clocks.set;
            m_nets.resize(m_sets.size());
            m_nets[clocks.set] += nets;
        }
    }

    Occurrence below(const Occurrence &at, std::uint32_t sub) const
    {
        const ModuleGraph &module = m_design.hierarchy.modules[at.level.module];
        const Span<std::uint32_t> nets = module.netsOf(module.subs[sub].cell);
        Occurrence next{m_design.below(at.level, sub), {}, {}, {}, 0};
        next.ports.assign(nets.size(), 0);
        next.clockPorts.assign(nets.size(), NONE);
        for (std::uint32_t port = 0; port < nets.size(); ++port) {
            if (nets[port] == NONE) {
                continue;
            }
            next.ports[port] = at.ofSets[m_design.sets[at.level.module].launch[nets[port]].set];
            const ElectricalCode code = m_design.clocks[at.level.module].nets[nets[port]];
            if (code.kind() == ElectricalCode::Clock) {
                next.clockPorts[port] = m_table.idOf(at.level.firstClock + code.number());
            } else if (code.kind() == ElectricalCode::Port) {
                next.clockPorts[port] = at.clockPorts[code.number()];
            }
        }
        return next;
    }

    const DesignModel &m_design;
    const ClockTable &m_table;
    std::vector<std::vector<std::pair<std::uint32_t, std::uint64_t>>> m_netsOfSets; ///< by module
    std::vector<Occurrence> m_open;                                                 ///< from the top down
    SetTable m_sets;
    std::vector<std::uint64_t> m_nets; ///< by set
};

} // namespace

NetCounts countNets(const DesignModel &design, const ClockTable &table)
{
    return LaunchCounter(design, table).count();
}

} // namespace kvr::netlistdb::analysis
