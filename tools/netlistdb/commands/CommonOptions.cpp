#include "commands/CommonOptions.h"

#include "base/Choice.h"
#include "base/NumberOption.h"

namespace kvr::netlistdb::tool {

void addDesignOptions(CLI::App &command, CommonOptions &options)
{
    static const std::map<std::string, std::optional<Form>> FORMS = {{"elaborated", Form::Elaborated},
                                                                     {"post-map", Form::PostMap}};
    addChoice(command, "--form", options.form, "Form of the netlist (default: found out from it)",
              "elaborated|post-map", FORMS)
        ->group("Design");
    addReadingOptions(command, options);
}

void addReadingOptions(CLI::App &command, CommonOptions &options)
{
    addSourceOptions(command, options);
    addNumber(command, "--max-instances", options.maxInstances, 1,
              "Refuse a design that unfolds to more than N instances (default: 50 million)")
        ->group("Design");
    command
        .add_option("--cells", options.cells,
                    "What further device cells are: a table, or Verilog models (*.v); may be repeated")
        ->type_name("FILE")
        ->group("Design")
        ->allow_extra_args(false);
    command
        .add_option("--source-root", options.sourceRoot,
                    "Where relative source paths in the netlist begin (default: the working directory)")
        ->type_name("DIR")
        ->group("Design");
}

void addSourceOptions(CLI::App &command, CommonOptions &options)
{
    const auto add = [&command](const char *flags, auto &target, const char *type, const char *help) {
        command.add_option(flags, target, help)->type_name(type)->group("Design");
    };
    const auto addList = [&command](const char *flags, std::vector<std::string> &target, const char *type,
                                    const char *help) {
        command.add_option(flags, target, help)->type_name(type)->group("Design")->allow_extra_args(false);
    };
    add("--top", options.top, "NAME", "Top module (default: the one marked as top, or that none instantiates)");
    addList("-I", options.verilog.includeDirectories, "DIR", "Look for included Verilog files in DIR");
    addList("-D", options.verilog.defines, "NAME=VALUE", "Define a Verilog macro");
    addList("-f", options.verilog.fileLists, "LIST", "Take Verilog sources and options from the file list LIST");
}

void addOutputOptions(CLI::App &command, CommonOptions &options)
{
    static const std::map<std::string, Format> FORMATS = {
        {"table", Format::Table}, {"json", Format::JsonDocument}, {"jsonl", Format::JsonLines}, {"csv", Format::Csv}};
    static const std::map<std::string, When> COLORS = {
        {"auto", When::Auto}, {"always", When::Always}, {"never", When::Never}};
    addChoice(command, "--format", options.format, "Format of the result (default: table)", "table|json|jsonl|csv",
              FORMATS)
        ->group("Output");
    command.add_option("-o,--output", options.outputFile, "Write the result to FILE, which appears when it is whole")
        ->type_name("FILE")
        ->group("Output");
    addChoice(command, "--color", options.color, "Colours in tables (default: auto, when a terminal shows them)",
              "auto|always|never", COLORS)
        ->group("Output");
}

void addPathsOption(CLI::App &command, CommonOptions &options)
{
    command.add_flag("--paths", options.paths, "Print full names alone, one a line")
        ->excludes(command.get_option("--format"))
        ->group("Output");
}

void addReportOptions(CLI::App &command, CommonOptions &options)
{
    static const std::map<std::string, When> PROGRESS = {{"auto", When::Auto}, {"never", When::Never}};
    addChoice(command, "--progress", options.progress, "Progress on standard error (default: auto, on a terminal)",
              "auto|never", PROGRESS)
        ->group("Output");
    command.add_flag("--stats", options.stats, "Print time and peak memory of each phase on standard error")
        ->group("Output");
}

} // namespace kvr::netlistdb::tool
