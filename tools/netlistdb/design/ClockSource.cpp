#include "design/ClockSource.h"

#include "design/SourceNetlists.h"

#include <netlistdb/netlistdb.h>
#include <set>
#include <string_view>

namespace kvr::netlistdb::tool {

namespace {

std::string_view valueOf(const Verific::DesignObj &object, const char *key)
{
    const char *value = object.GetAttValue(key);
    return value != nullptr ? value : "";
}

/// The net in front of @p buffer, or null.
const Verific::Net *bufferInput(const Verific::Instance &buffer)
{
    const Verific::Port *input = buffer.View()->GetPort("I", 0);
    return input != nullptr ? buffer.GetNet(input) : nullptr;
}

/// The net of the design's port that @p pad is connected to, or null.
const Verific::Net *padInput(const Verific::Instance &pad)
{
    Verific::MapIter mi;
    Verific::PortRef *ref = nullptr;
    FOREACH_PORTREF_OF_INST (&pad, mi, ref) {
        const Verific::Net *net = ref->GetNet();
        if (net == nullptr || ref->GetPort() == nullptr || ref->GetPort()->IsOutput() != 0) {
            continue;
        }
        Verific::SetIter si;
        const Verific::Port *port = nullptr;
        FOREACH_PORT_OF_NET (net, si, port) {
            return net;
        }
    }
    return nullptr;
}

/// The net that @p net repeats, behind a clock buffer or a pad; null when something else drives it. A gated buffer, or
/// a pad with a register, makes another clock.
const Verific::Net *before(const Verific::Net &net)
{
    const Verific::Instance *driver = net.Driver();
    if (driver == nullptr || driver->View() == nullptr) {
        return nullptr;
    }
    const std::string_view kind = valueOf(*driver->View(), "NETLISTDB_CELL_KIND");
    const std::string_view role = valueOf(*driver, "KVR_ATTRIBUTE_CELL_NAME");
    if (kind == "clock-buffer" && role == "KVR_GBUFCE") {
        return bufferInput(*driver);
    }
    const bool isRegister = !role.empty() && role != driver->View()->CellBaseName();
    return kind == "io" && !isRegister ? padInput(*driver) : nullptr;
}

} // namespace

/// The net outside the instance that the wire of @p place is connected to, or null.
const Verific::Net *ClockSource::above(const WirePlace &place)
{
    const Verific::Instance *instance = m_sources.of(*place.instance);
    const Verific::Port *port = instance != nullptr ? m_joined.portOf(*place.net) : nullptr;
    return port != nullptr ? instance->GetNet(port) : nullptr;
}

std::vector<WirePlace> ClockSource::wayTo(const IClockDomain &domain)
{
    std::vector<WirePlace> way;
    IVDBInstance *instance = domain.getInstance();
    const Verific::Netlist *netlist = m_sources.of(*instance->getModule());
    const Verific::Net *net = netlist != nullptr ? netlist->GetNet(domain.getNet()->getName().c_str()) : nullptr;
    // Buffers may drive each other in a circle.
    std::set<std::pair<const IVDBInstance *, const Verific::Net *>> seen;
    while (net != nullptr && seen.emplace(instance, net).second) {
        const Verific::Net *wire = m_joined.wireOf(*net);
        way.push_back({instance, wire});
        const Verific::Net *next = before(*net);
        next = next == nullptr && wire != net ? before(*wire) : next;
        if (next == nullptr) {
            next = above(way.back());
            instance = next != nullptr ? instance->getOwnerInstance() : instance;
        }
        net = next;
    }
    return way;
}

} // namespace kvr::netlistdb::tool
