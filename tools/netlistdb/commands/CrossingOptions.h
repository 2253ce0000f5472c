#pragma once

#include "design/CrossingChoice.h"

#include <string>

namespace CLI {
class App;
}

namespace kvr::netlistdb::tool {

// Options that take a list of names, separated by commas; the last of repeated ones counts.

void addClasses(CLI::App &app, const std::string &flag, CrossingClasses &target, const std::string &help);
void addSeverities(CLI::App &app, const std::string &flag, Severities &target, const std::string &help);
void addFailures(CLI::App &app, const std::string &flag, CrossingFailures &target, const std::string &help);

} // namespace kvr::netlistdb::tool
