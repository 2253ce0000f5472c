#include "design/CrossingWords.h"

#include <algorithm>

namespace kvr::netlistdb::tool {

std::string launchName(const analysis::Crossing &crossing, const analysis::ClockMap &clocks)
{
    return crossing.launch ? clocks.clocks()[*crossing.launch].name : std::string("(none)");
}

bool isClockCalled(const analysis::Clock &clock, const NamePattern &pattern)
{
    return pattern.matches(clock.name) || std::any_of(clock.names.begin(), clock.names.end(),
                                                      [&](const std::string &name) { return pattern.matches(name); });
}

} // namespace kvr::netlistdb::tool
