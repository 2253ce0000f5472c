#pragma once

#include "netlist/VDBObjectPool.h"

#include "DataBase.h"

#include <netlistdb/IVDBInstance.h>

namespace kvr::netlistdb {

/// Calls @p visit(owner, net) for every net of the owner of @p instance that enters it as @p net: through a port,
/// other than an output, that meets @p net inside. In the order of the instance's pins; ends at a pin whose net has no
/// item. Nothing is visited when the instance is null, has no owner or anything on the way has no counterpart.
template <typename Visit>
void climb(const VDBObjectPool &pool, const IVDBInstance *instance, const Verific::Net *net, Visit visit)
{
    IVDBInstance *owner = instance != nullptr ? instance->getOwnerInstance() : nullptr;
    if (net == nullptr || owner == nullptr || owner->getModule() == nullptr ||
        pool.find(owner->getModule()) == nullptr) {
        return;
    }
    const Verific::Instance *source = pool.find(instance);
    if (source == nullptr) {
        return;
    }
    const Verific::Set *ports = net->GetPorts();
    if (ports->Size() == 0) {
        return;
    }
    if (ports->Size() == 1) {
        // One port, the usual case: no need to look through all the pins for it.
        const auto *port = static_cast<const Verific::Port *>(ports->GetLast());
        const Verific::Net *outside = port->IsOutput() ? nullptr : source->GetNet(port);
        IVDBNet *item = outside != nullptr ? pool.find(outside) : nullptr;
        if (item != nullptr) {
            visit({owner, item});
        }
        return;
    }
    Verific::MapIter pins;
    Verific::PortRef *pin = nullptr;
    FOREACH_PORTREF_OF_INST (source, pins, pin) {
        const Verific::Port *port = pin->GetPort();
        if (port == nullptr || port->IsOutput() || ports->Get(port) == nullptr) {
            continue;
        }
        IVDBNet *item = pin->GetNet() != nullptr ? pool.find(pin->GetNet()) : nullptr;
        if (item == nullptr) {
            return;
        }
        visit({owner, item});
    }
}

} // namespace kvr::netlistdb
