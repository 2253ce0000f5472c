#pragma once

#include "commands/CommonOptions.h"
#include "serve/ServedDesign.h"

#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// The designs that a command line names: @p arguments are `[NAME=]FILE`, where Verilog sources that follow each other
/// are one design; @p postMaps are `[NAME=]FILE`, where the name may be missing when there is one design; @p rules is a
/// file of clock groups and waivers, or empty. Reads the file lists of @p common.
/// @throws Failure for names that are taken twice or unknown, and for files that cannot be read.
std::vector<ServedSource> servedSources(const std::vector<std::string> &arguments,
                                        const std::vector<std::string> &postMaps, const std::string &rules,
                                        CommonOptions &common);

} // namespace kvr::netlistdb::tool
