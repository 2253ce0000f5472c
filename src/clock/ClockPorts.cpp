#include "clock/ClockPorts.h"

#include "clock/PostMapCells.h"

#include "DataBase.h"

namespace kvr::netlistdb {

namespace {

/// Ports of a cell type whose pins are walked as fast as they are looked up.
constexpr unsigned FEW_PORTS = 48;

} // namespace

bool ClockPorts::clockOfOutput(const Verific::Instance *cell, const Verific::Port *drivingPin,
                               const Verific::Net *&clock)
{
    const Verific::Netlist *const type = cell->View();
    if (type == nullptr || type->GetPorts()->Size() <= FEW_PORTS) {
        return kvr::netlistdb::clockOfOutput(cell, drivingPin, clock);
    }
    const Verific::Port *only = nullptr;
    for (const Verific::Port *port : clockPortsOf(*type)) {
        if (isClockOf(cell, drivingPin, port)) {
            if (only != nullptr) {
                return kvr::netlistdb::clockOfOutput(cell, drivingPin, clock);
            }
            only = port;
        }
    }
    const Verific::Net *const net = only != nullptr ? cell->GetNet(only) : nullptr;
    return net != nullptr && beforeBuffer(net, clock);
}

const std::vector<const Verific::Port *> &ClockPorts::clockPortsOf(const Verific::Netlist &type)
{
    const auto [ports, isNew] = m_ports.try_emplace(&type);
    if (isNew) {
        try {
            Verific::MapIter each;
            const Verific::Port *port = nullptr;
            FOREACH_PORT_OF_NETLIST (&type, each, port) {
                if (isClockPort(port)) {
                    ports->second.push_back(port);
                }
            }
        } catch (...) {
            m_ports.erase(ports);
            throw;
        }
    }
    return ports->second;
}

} // namespace kvr::netlistdb
