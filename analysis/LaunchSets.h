#pragma once

#include "analysis/Components.h"
#include "analysis/ModuleSets.h"
#include "analysis/SignalGraph.h"

namespace kvr::netlistdb::analysis {

/// One module as the passes over it see it.
struct ModuleView {
    const Hierarchy &hierarchy;
    const ModuleGraph &module;
    const std::vector<ModuleClocks> &clocks;
    const ModuleClocks &ownClocks;
    bool isTop;
    const std::vector<ModuleSets> &sets; ///< of the modules that are instantiated

    /// What a clock pin on @p net makes of a set: registers of a clock, @p own, or of what comes in through a port,
    /// @p byPort. Not for what is no clock.
    Atom clockAtom(std::uint32_t net, Atom::Kind own, Atom::Kind byPort) const
    {
        const ElectricalCode code = ownClocks.nets[net];
        return {code.kind() == ElectricalCode::Clock ? own : byPort, code.number()};
    }
    /// The number in this module of clock @p clock of an instance.
    std::uint32_t clockOfSub(std::uint32_t sub, std::uint32_t clock) const { return ownClocks.firstOfSub[sub] + clock; }
};

/// Fills @p own.launch: sources first, each component of the graph once.
void findLaunchSets(const ModuleView &view, const SignalGraph &graph, const Components &components, ModuleSets &own);

} // namespace kvr::netlistdb::analysis
