#pragma once

#include "design/Verdicts.h"

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace kvr::netlistdb::tool {

/// Adds `--verdict`, which takes verdicts separated by commas.
CLI::Option *addVerdicts(CLI::App &command, Verdicts &verdicts);

} // namespace kvr::netlistdb::tool
