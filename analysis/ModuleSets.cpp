#include "analysis/ModuleSets.h"

#include "analysis/CaptureSets.h"
#include "analysis/LaunchSets.h"

namespace kvr::netlistdb::analysis {

ModuleSets findSets(const Hierarchy &hierarchy, const std::vector<ModuleClocks> &clocks, std::uint32_t module,
                    bool isTop, const std::vector<ModuleSets> &sets)
{
    const ModuleView view{hierarchy, hierarchy.modules[module], clocks, clocks[module], isTop, sets};
    ModuleSets own;
    const SignalGraph graph(hierarchy, module, sets);
    const Components components(graph);
    findLaunchSets(view, graph, components, own);
    own.launchTable.finish();
    findCaptureSets(view, graph, components, own);
    own.captureTable.finish();
    return own;
}

} // namespace kvr::netlistdb::analysis
