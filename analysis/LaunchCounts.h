#pragma once

#include "analysis/ClockTable.h"
#include "analysis/DesignModel.h"

#include <netlistdb/analysis/Clocks.h>

namespace kvr::netlistdb::analysis {

/// The unfolded nets by the clocks whose registers reach them.
NetCounts countNets(const DesignModel &design, const ClockTable &table);

} // namespace kvr::netlistdb::analysis
