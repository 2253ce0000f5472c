#pragma once

#include "analysis/ClockMapState.h"

namespace kvr::netlistdb::analysis {

/// The shortest chains from @p place to everything that reaches it.
LaunchProof prove(const ClockMap::State &map, const Place &place);

} // namespace kvr::netlistdb::analysis
