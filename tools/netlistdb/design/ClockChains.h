#pragma once

#include "output/Json.h"

#include <netlistdb/analysis/ClockMap.h>
#include <string>

namespace kvr::netlistdb::tool {

/// The chains of @p proof as an indented picture, one line a net, a cell or a port. File names below @p directory are
/// shown from there.
std::string pictureOf(const analysis::LaunchProof &proof, const analysis::ClockMap &clocks,
                      const std::string &directory);

/// The chains of @p proof as `{"clocks": […], "networks": […], "ends": […]}`.
Json jsonOf(const analysis::LaunchProof &proof, const analysis::ClockMap &clocks);

} // namespace kvr::netlistdb::tool
