#pragma once

#include "base/Terminal.h"
#include "design/Form.h"
#include "output/ResultWriter.h"

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kvr::netlistdb::tool {

/// The options that commands share.
struct CommonOptions {
    std::optional<Form> form;
    std::string top;
    std::vector<std::string> cells;
    std::string sourceRoot; ///< empty: the working directory
    Format format = Format::Table;
    std::string outputFile; ///< empty: standard output
    When progress = When::Auto;
    When color = When::Auto;
    bool stats = false;
};

/// Adds the options about the design to a command.
void addDesignOptions(CLI::App &command, CommonOptions &options);
/// Adds the options about results to a command.
void addOutputOptions(CLI::App &command, CommonOptions &options);
/// Adds the options about what happens on standard error to a command.
void addReportOptions(CLI::App &command, CommonOptions &options);

} // namespace kvr::netlistdb::tool
