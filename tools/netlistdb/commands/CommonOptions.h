#pragma once

#include "base/Terminal.h"
#include "design/Form.h"
#include "design/VerilogSources.h"
#include "output/ResultWriter.h"

#include <cstdint>
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
    VerilogOptions verilog;
    std::uint64_t maxInstances = 50'000'000;
    std::vector<std::string> cells;
    std::string sourceRoot; ///< empty: the working directory
    Format format = Format::Table;
    bool paths = false;     ///< full names alone, in no format
    std::string outputFile; ///< empty: standard output
    When progress = When::Auto;
    When color = When::Auto;
    bool stats = false;
};

/// Adds the options about the design to a command.
void addDesignOptions(CLI::App &command, CommonOptions &options);
/// Adds them without the form, for commands that know it.
void addReadingOptions(CLI::App &command, CommonOptions &options);
/// Adds those of them that say how a design is read, for every command.
void addSourceOptions(CLI::App &command, CommonOptions &options);
/// Adds the options about results to a command.
void addOutputOptions(CLI::App &command, CommonOptions &options);
/// Adds the option that prints full names alone, for commands whose results have a column "path". Behind the options
/// about results.
void addPathsOption(CLI::App &command, CommonOptions &options);
/// Adds the options about what happens on standard error to a command.
void addReportOptions(CLI::App &command, CommonOptions &options);

} // namespace kvr::netlistdb::tool
