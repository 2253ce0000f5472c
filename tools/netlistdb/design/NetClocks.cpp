#include "design/NetClocks.h"

#include "design/Design.h"

#include <algorithm>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

void addClock(Design &design, IVDBInstance &instance, IVDBNet &net, std::vector<std::string> &clocks)
{
    const Clock *clock = design.clockOf(instance, net);
    if (clock != nullptr && std::find(clocks.begin(), clocks.end(), clock->name) == clocks.end()) {
        clocks.push_back(clock->name);
    }
}

} // namespace

void findClocks(Design &design, IVDBInstance &instance, const std::vector<IVDBNet *> &nets,
                std::vector<std::string> &clocks)
{
    clocks.clear();
    for (IVDBNet *net : nets) {
        addClock(design, instance, *net, clocks);
    }
}

} // namespace kvr::netlistdb::tool
