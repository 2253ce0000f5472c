#include "analysis/BoundSets.h"

#include <algorithm>

namespace kvr::netlistdb::analysis {

namespace {

/// Something of a module that is seen from some cells away: a port, or a set.
struct Seen {
    std::uint32_t number;
    std::uint32_t cells;
    friend bool operator<(const Seen &a, const Seen &b)
    {
        return a.number != b.number ? a.number < b.number : a.cells < b.cells;
    }
};

/// Leaves the nearest of each number.
void keepNearest(std::vector<Seen> &seen)
{
    if (seen.size() > 1) {
        std::sort(seen.begin(), seen.end());
        seen.erase(
            std::unique(seen.begin(), seen.end(), [](const Seen &a, const Seen &b) { return a.number == b.number; }),
            seen.end());
    }
}

void sortLaunch(std::vector<BoundClock> &clocks)
{
    if (clocks.size() < 2) {
        return;
    }
    std::sort(clocks.begin(), clocks.end(), [](const BoundClock &a, const BoundClock &b) {
        return a.isNetwork != b.isNetwork ? !a.isNetwork : a.clock != b.clock ? a.clock < b.clock : a.cells < b.cells;
    });
    clocks.erase(std::unique(clocks.begin(), clocks.end(),
                             [](const BoundClock &a, const BoundClock &b) {
                                 return a.isNetwork == b.isNetwork && a.clock == b.clock;
                             }),
                 clocks.end());
}

void sortCapture(std::vector<BoundClock> &clocks)
{
    if (clocks.size() < 2) {
        return;
    }
    std::sort(clocks.begin(), clocks.end(), [](const BoundClock &a, const BoundClock &b) { return a.clock < b.clock; });
    auto last = clocks.begin();
    for (auto each = last + 1; each != clocks.end(); ++each) {
        if (each->clock == last->clock) {
            last->roles = static_cast<std::uint8_t>(last->roles | each->roles);
        } else {
            *++last = *each;
        }
    }
    clocks.erase(last + 1, clocks.end());
}

std::uint8_t rolesOf(Atom::Kind kind)
{
    switch (kind) {
    case Atom::CapturedEnable:
    case Atom::CapturedByPortEnable:
        return CAPTURE_ENABLE;
    case Atom::CapturedSetReset:
    case Atom::CapturedByPortSetReset:
        return CAPTURE_SET_RESET;
    default:
        return CAPTURE_DATA;
    }
}

} // namespace

BoundSet boundLaunch(const DesignModel &design, const Context &context, std::uint32_t net)
{
    BoundSet bound;
    const SetTable::Ref first = design.sets[context.back().module].launch[net];
    std::vector<Seen> sets{{first.set, first.distance}};
    std::vector<Seen> ports;
    std::vector<Seen> clockPorts;
    for (std::size_t at = context.size(); at-- > 0;) {
        const Level &level = context[at];
        const SetTable &table = design.sets[level.module].launchTable;
        ports.clear();
        std::vector<Seen> clockPortsAbove;
        for (const Seen &port : clockPorts) {
            const std::uint32_t above = design.netAbove(level, context[at + 1], port.number);
            if (above == NONE) {
                bound.flags |= REACHED_BY_UNDRIVEN;
                continue;
            }
            const ElectricalCode code = design.clocks[level.module].nets[above];
            if (code.kind() == ElectricalCode::Clock) {
                bound.clocks.push_back({level.firstClock + code.number(), port.cells, false, 0});
            } else {
                clockPortsAbove.push_back({code.number(), port.cells});
            }
        }
        for (const Seen &set : sets) {
            bound.flags |= table.flags(set.number);
            for (const SetTable::Entry &entry : table[set.number]) {
                const std::uint32_t cells = set.cells + entry.distance;
                switch (entry.atom.kind()) {
                case Atom::LaunchedByPort:
                    clockPortsAbove.push_back({entry.atom.number(), cells});
                    break;
                case Atom::InputPort:
                    ports.push_back({entry.atom.number(), cells});
                    break;
                default:
                    bound.clocks.push_back(
                        {level.firstClock + entry.atom.number(), cells, entry.atom.kind() == Atom::Network, 0});
                }
            }
        }
        clockPorts = std::move(clockPortsAbove);
        if (ports.empty() && clockPorts.empty()) {
            break;
        }
        keepNearest(ports);
        keepNearest(clockPorts);
        sets.clear();
        for (const Seen &port : ports) {
            const std::uint32_t above = design.netAbove(context[at - 1], level, port.number);
            if (above == NONE) {
                bound.flags |= REACHED_BY_UNDRIVEN;
            } else {
                const SetTable::Ref set = design.sets[context[at - 1].module].launch[above];
                sets.push_back({set.set, port.cells + set.distance});
            }
        }
        keepNearest(sets);
    }
    sortLaunch(bound.clocks);
    return bound;
}

BoundSet boundCapture(const DesignModel &design, const Context &context, std::uint32_t net)
{
    struct ClockPort {
        std::uint32_t port;
        std::uint8_t roles;
    };
    BoundSet bound;
    std::vector<std::uint32_t> sets{design.sets[context.back().module].capture[net]};
    std::vector<ClockPort> clockPorts;
    for (std::size_t at = context.size(); at-- > 0;) {
        const Level &level = context[at];
        const SetTable &table = design.sets[level.module].captureTable;
        std::vector<std::uint32_t> ports;
        std::vector<ClockPort> clockPortsAbove;
        for (const ClockPort &port : clockPorts) {
            const std::uint32_t above = design.netAbove(level, context[at + 1], port.port);
            if (above == NONE) {
                continue;
            }
            const ElectricalCode code = design.clocks[level.module].nets[above];
            if (code.kind() == ElectricalCode::Clock) {
                bound.clocks.push_back({level.firstClock + code.number(), 0, false, port.roles});
            } else {
                clockPortsAbove.push_back({code.number(), port.roles});
            }
        }
        for (const std::uint32_t set : sets) {
            bound.flags |= table.flags(set);
            for (const SetTable::Entry &entry : table[set]) {
                const Atom::Kind kind = entry.atom.kind();
                if (kind == Atom::OutputPort) {
                    ports.push_back(entry.atom.number());
                } else if (kind >= Atom::CapturedByPort) {
                    clockPortsAbove.push_back({entry.atom.number(), rolesOf(kind)});
                } else {
                    bound.clocks.push_back({level.firstClock + entry.atom.number(), 0, false, rolesOf(kind)});
                }
            }
        }
        clockPorts = std::move(clockPortsAbove);
        if (ports.empty() && clockPorts.empty()) {
            break;
        }
        sets.clear();
        for (const std::uint32_t port : ports) {
            const std::uint32_t above = design.netAbove(context[at - 1], level, port);
            if (above != NONE) {
                sets.push_back(design.sets[context[at - 1].module].capture[above]);
            }
        }
        std::sort(sets.begin(), sets.end());
        sets.erase(std::unique(sets.begin(), sets.end()), sets.end());
    }
    sortCapture(bound.clocks);
    return bound;
}

} // namespace kvr::netlistdb::analysis
