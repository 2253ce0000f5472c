#include "commands/CommonOptions.h"

#include "base/Choice.h"

namespace kvr::netlistdb::tool {

void addDesignOptions(CLI::App &command, CommonOptions &options)
{
    static const std::map<std::string, std::optional<Form>> FORMS = {{"elaborated", Form::Elaborated},
                                                                     {"post-map", Form::PostMap}};
    addChoice(command, "--form", options.form, "Form of the netlist (default: found out from it)",
              "elaborated|post-map", FORMS)
        ->group("Design");
    command.add_option("--top", options.top, "Top module (default: the one marked as top, or that none instantiates)")
        ->type_name("NAME")
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

void addOutputOptions(CLI::App &command, CommonOptions &options)
{
    static const std::map<std::string, Format> FORMATS = {
        {"table", Format::Table}, {"json", Format::Json}, {"jsonl", Format::JsonLines}, {"csv", Format::Csv}};
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
