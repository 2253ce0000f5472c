#pragma once

#include "design/Kinds.h"

#include <string>

namespace CLI {
class App;
}

namespace kvr::netlistdb::tool {

/// Adds `--kind`, which takes one or several of @p names, separated by commas.
void addKinds(CLI::App &command, Kinds &kinds, const std::string &names);

} // namespace kvr::netlistdb::tool
