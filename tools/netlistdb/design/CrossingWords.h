#pragma once

#include "design/NamePattern.h"

#include <netlistdb/analysis/Crossings.h>
#include <string>

namespace kvr::netlistdb::tool {

/// The name of the launch clock; "(none)" for a port or a black box.
std::string launchName(const analysis::Crossing &crossing, const analysis::ClockMap &clocks);

/// Whether @p pattern matches the name of @p clock or one of its other names.
bool isClockCalled(const analysis::Clock &clock, const NamePattern &pattern);

} // namespace kvr::netlistdb::tool
