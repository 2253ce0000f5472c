#include "design/ClockWires.h"

#include "design/JoinedNets.h"
#include "design/SourceNetlists.h"

#include <DataBase.h>
#include <map>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

/// A wire where it is nearest to the top.
using Wire = std::pair<const IVDBInstance *, const Verific::Net *>;

/// Follows the net of @p domain upwards through the ports that it meets. Answers a null net when it is not known.
Wire topOf(const IClockDomain &domain, const SourceNetlists &sources, JoinedNets &joined)
{
    const IVDBInstance *instance = domain.getInstance();
    const Verific::Netlist *netlist = sources.of(*instance->getModule());
    const Verific::Net *net = netlist != nullptr ? netlist->GetNet(domain.getNet()->getName().c_str()) : nullptr;
    while (net != nullptr) {
        net = joined.wireOf(*net);
        const Verific::Instance *source = sources.of(*instance);
        const Verific::Port *port = source != nullptr ? joined.portOf(*net) : nullptr;
        const Verific::Net *above = port != nullptr ? source->GetNet(port) : nullptr;
        if (above == nullptr) {
            break;
        }
        net = above;
        instance = instance->getOwnerInstance();
    }
    return {instance, net};
}

} // namespace

ClockWires::ClockWires(const SourceNetlists &sources, const std::vector<IClockDomain *> &domains)
{
    JoinedNets joined;
    std::map<Wire, std::vector<IClockDomain *>> wires;
    std::vector<std::vector<IClockDomain *> *> order;
    std::vector<std::vector<IClockDomain *>> unknown;
    unknown.reserve(domains.size());
    for (IClockDomain *domain : domains) {
        const Wire wire = topOf(*domain, sources, joined);
        if (wire.second == nullptr) {
            unknown.push_back({domain});
            order.push_back(&unknown.back());
            continue;
        }
        std::vector<IClockDomain *> &together = wires[wire];
        if (together.empty()) {
            order.push_back(&together);
        }
        together.push_back(domain);
    }
    for (const std::vector<IClockDomain *> *together : order) {
        IClockDomain *clock = together->front();
        for (IClockDomain *domain : *together) {
            if (domain->getInstance()->getDepth() < clock->getInstance()->getDepth()) {
                clock = domain;
            }
        }
        for (IClockDomain *domain : *together) {
            m_wires.emplace(domain, clock);
            if (domain != clock) {
                m_others[clock].push_back(domain->getName());
            }
        }
    }
    for (IClockDomain *domain : domains) {
        if (of(domain) == domain) {
            m_clocks.push_back(domain);
        }
    }
}

IClockDomain *ClockWires::of(IClockDomain *domain) const
{
    const auto clock = m_wires.find(domain);
    return clock != m_wires.end() ? clock->second : domain;
}

const std::vector<std::string> &ClockWires::othersOf(const IClockDomain *clock) const
{
    static const std::vector<std::string> NONE;
    const auto others = m_others.find(clock);
    return others != m_others.end() ? others->second : NONE;
}

} // namespace kvr::netlistdb::tool
