#pragma once

#include <netlistdb/IVDBNetBus.h>
#include <netlistdb/VDBNetlist.h>

namespace kvr::netlistdb {

/// Calls @p visit(net) for every net of a module: the members of its buses, then the plain ones. Allocates nothing.
template <typename Visit> void forEachNet(const VDBNetlist &module, Visit visit)
{
    for (const IVDBNetBus *bus : module.getAllNetBus()) {
        for (IVDBNet *net : bus->getNets()) {
            visit(net);
        }
    }
    for (IVDBNet *net : module.plainNets()) {
        visit(net);
    }
}

} // namespace kvr::netlistdb
