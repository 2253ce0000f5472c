#pragma once

#include "analysis/LaunchSets.h"

namespace kvr::netlistdb::analysis {

/// Fills @p own.capture: the graph of findLaunchSets() the other way round.
void findCaptureSets(const ModuleView &view, const SignalGraph &graph, const Components &components, ModuleSets &own);

} // namespace kvr::netlistdb::analysis
