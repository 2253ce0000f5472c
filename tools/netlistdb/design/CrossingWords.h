#pragma once

#include "design/NamePattern.h"

#include <netlistdb/analysis/Crossings.h>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// The name of the launch clock; "(none)" for a port or a black box.
std::string launchName(const analysis::Crossing &crossing, const analysis::ClockMap &clocks);

/// Whether @p pattern matches the name of @p clock or one of its other names.
bool isClockCalled(const analysis::Clock &clock, const NamePattern &pattern);

/// The parts of @p text between commas.
std::vector<std::string> splitAtCommas(const std::string &text);

/// `vector[3]`, `vector[7:0]`, `vector[7,4:2]`: the bits of one vector in short. @p bits is sorted in place.
std::string bitsText(const std::string &vector, std::vector<int> &bits);

} // namespace kvr::netlistdb::tool
