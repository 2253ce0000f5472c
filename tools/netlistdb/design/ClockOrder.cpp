#include "design/ClockOrder.h"

#include "design/Design.h"
#include "design/InstanceWalk.h"

#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

std::vector<IClockDomain *> domainsInOrder(IVDBInstance &root, const std::vector<IClockDomain *> &domains)
{
    std::unordered_map<IVDBInstance *, std::unordered_multimap<IVDBNet *, IClockDomain *>> remaining;
    for (IClockDomain *domain : domains) {
        remaining[domain->getInstance()].emplace(domain->getNet(), domain);
    }
    std::vector<IClockDomain *> ordered;
    for (InstanceWalk walk(root); walk.instance() != nullptr && !remaining.empty(); walk.next()) {
        const auto found = remaining.find(walk.instance());
        if (found == remaining.end()) {
            continue;
        }
        for (const bool fromBuses : {true, false}) {
            for (IVDBNet *net : walk.instance()->getModule()->getNets(fromBuses)) {
                const auto [first, last] = found->second.equal_range(net);
                for (auto domain = first; domain != last; ++domain) {
                    ordered.push_back(domain->second);
                }
            }
        }
        remaining.erase(found);
    }
    return ordered;
}

ClocksByInstance clocksByInstance(Design &design)
{
    ClocksByInstance clocks;
    for (const Clock &clock : design.clocks().clocks()) {
        clocks[clock.nets.front().instance].push_back(clock.nets.front().net->getName());
    }
    return clocks;
}

} // namespace kvr::netlistdb::tool
