#include "design/ClockWires.h"

#include "design/ClockSource.h"
#include "design/Design.h"

#include <algorithm>
#include <map>
#include <netlistdb/netlistdb.h>
#include <tuple>

namespace kvr::netlistdb::tool {

namespace {

/// The lower, the more likely it is what the user calls the clock: a name that the module itself declares, then one
/// that comes from a flattened module below it, then one that no user wrote.
unsigned rankOf(const ClockNet &candidate, Design &design)
{
    if (!design.names(*candidate.instance->getModule()).isDeclared(*candidate.net)) {
        return 2;
    }
    return candidate.net->getName().find_first_of("./") != std::string::npos ? 1 : 0;
}

/// The clock of @p domains, which are on one wire with the nets on the @p way to them. It is called by the best name;
/// of several, by one nearest to the top; then by one that the database records as a domain; then by the first.
Clock makeClock(const std::vector<IClockDomain *> &domains, const std::vector<WirePlace> &way, Design &design)
{
    Clock clock;
    for (IClockDomain *domain : domains) {
        clock.nets.push_back({domain->getInstance(), domain->getNet()});
    }
    std::vector<ClockNet> candidates = clock.nets;
    for (const WirePlace &place : way) {
        const auto &nets = design.names(*place.instance->getModule()).nets();
        const auto net = nets.find(place.net->Name());
        if (net != nets.end()) {
            candidates.push_back({place.instance, net->second});
        }
    }
    const auto orderOf = [&design](const ClockNet &candidate) {
        return std::tuple(rankOf(candidate, design), candidate.instance->getDepth());
    };
    const ClockNet best = *std::min_element(candidates.begin(), candidates.end(),
                                            [&](const auto &a, const auto &b) { return orderOf(a) < orderOf(b); });
    const auto isBest = [&best](const ClockNet &each) {
        return each.instance == best.instance && each.net == best.net;
    };
    clock.nets.erase(std::remove_if(clock.nets.begin(), clock.nets.end(), isBest), clock.nets.end());
    clock.nets.insert(clock.nets.begin(), best);
    clock.name = best.fullName();
    return clock;
}

} // namespace

std::string ClockNet::fullName() const
{
    const std::string path = instance->getPath();
    return path.empty() ? net->getName() : path + "/" + net->getName();
}

ClockWires::ClockWires(Design &design, const SourceNetlists &sources, const std::vector<IClockDomain *> &domains)
{
    ClockSource source(sources);
    // One group of domains, and the nets on the way to them, for each clock.
    std::map<std::pair<const IVDBInstance *, const Verific::Net *>, std::size_t> wires;
    std::vector<std::vector<IClockDomain *>> groups;
    std::vector<std::vector<WirePlace>> ways;
    for (IClockDomain *domain : domains) {
        std::vector<WirePlace> way = source.wayTo(*domain);
        std::size_t number = groups.size();
        if (!way.empty()) {
            number = wires.emplace(std::pair(way.back().instance, way.back().net), number).first->second;
        }
        if (number == groups.size()) {
            groups.emplace_back();
            ways.emplace_back();
        }
        groups[number].push_back(domain);
        ways[number].insert(ways[number].end(), way.begin(), way.end());
        m_numbers.emplace(domain, number);
    }
    for (std::size_t number = 0; number < groups.size(); ++number) {
        m_clocks.push_back(makeClock(groups[number], ways[number], design));
    }
}

const Clock *ClockWires::of(const IClockDomain *domain) const
{
    const auto number = m_numbers.find(domain);
    return number != m_numbers.end() ? &m_clocks[number->second] : nullptr;
}

} // namespace kvr::netlistdb::tool
