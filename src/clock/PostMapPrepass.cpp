#include "clock/PostMapPrepass.h"

#include "clock/ItemLookup.h"
#include "clock/PostMapCells.h"

#include "DataBase.h"

namespace kvr::netlistdb {

std::set<InstanceNet> postMapClocks(const Verific::Netlist &netlist, IVDBInstance *root, const ItemLookup &items)
{
    std::set<InstanceNet> clocks;
    const auto add = [&](const Verific::Net *net) {
        if (net != nullptr) {
            clocks.emplace(root, items.find(net));
        }
    };
    Verific::MapIter instances;
    Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (&netlist, instances, instance) {
        if (isClockBuffer(instance)) {
            const Verific::Net *input = nullptr;
            if (bufferInput(instance, input)) {
                add(input);
            }
        } else if (isSequentialCell(instance)) {
            Verific::MapIter pins;
            Verific::PortRef *pin = nullptr;
            FOREACH_PORTREF_OF_INST (instance, pins, pin) {
                if (pin->GetNet() != nullptr && pin->GetPort() != nullptr && isClockPort(pin->GetPort())) {
                    add(instance->GetNet(pin->GetPort()));
                }
            }
        }
    }
    return clocks;
}

} // namespace kvr::netlistdb
