#pragma once

#include "analysis/ModuleClocks.h"

namespace kvr::netlistdb::analysis {

/// Follows every net of @p module, whose instances are done already, back through buffers and instances: fills `nets`
/// and `below`, without clocks. Of the top (@p isTop) the ports are where nets begin.
void followNets(const Hierarchy &hierarchy, std::uint32_t module, bool isTop, std::vector<ModuleClocks> &clocks);

} // namespace kvr::netlistdb::analysis
