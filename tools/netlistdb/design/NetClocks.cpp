#include "design/NetClocks.h"

#include "design/Design.h"

#include <algorithm>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

void findClocks(Design &design, const IVDBInstance &instance, const std::vector<IVDBNet *> &nets,
                std::vector<std::string> &clocks)
{
    clocks.clear();
    const analysis::ClockMap &map = design.clocks();
    for (const IVDBNet *net : nets) {
        if (net == nullptr) {
            continue;
        }
        for (const analysis::ReachingClock &reaching : map.launch(&instance, net).clocks) {
            const std::string &name = map.clocks()[reaching.clock].name;
            if (std::find(clocks.begin(), clocks.end(), name) == clocks.end()) {
                clocks.push_back(name);
            }
        }
    }
}

} // namespace kvr::netlistdb::tool
