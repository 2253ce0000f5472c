#include "commands/Command.h"

#include "base/Failure.h"
#include "design/Design.h"

#include <fmt/format.h>

namespace kvr::netlistdb::tool {

Command::~Command() = default;

void Command::checkStandardInput(const std::string &elaborated, const std::string &postMap) const
{
    if (elaborated == "-" && postMap == "-") {
        throw wrongUsage(fmt::format("{}: '-' can be one of the two netlists only", name()));
    }
}

void DesignCommand::addOptions(CLI::App &app, CommonOptions &common)
{
    addDesignOptions(app, common);
    addOutputOptions(app, common);
    addReportOptions(app, common);
}

void DesignCommand::takeArguments(std::vector<std::string> arguments, const CommonOptions &common)
{
    const auto usage = [this] { return fmt::format("usage: netlistdb {} {}", name(), this->arguments()); };
    const std::size_t least = leastOwnArguments();
    std::size_t designFiles = common.verilog.fileLists.empty() ? 1 : 0;
    if (arguments.size() < designFiles + least) {
        const bool nothing = arguments.empty() && designFiles > 0;
        throw wrongUsage(fmt::format("{}; {}", nothing ? "no design given" : "an argument is missing", usage()));
    }
    // Arguments of the command itself may look like Verilog sources, too: the last ones are always its own.
    while ((designFiles == 0 || isVerilogName(arguments.front())) && designFiles + least < arguments.size() &&
           isVerilogName(arguments[designFiles])) {
        ++designFiles;
    }
    if (arguments.size() - designFiles > mostOwnArguments()) {
        throw wrongUsage(
            fmt::format("'{}' is one argument too many; {}", arguments[designFiles + mostOwnArguments()], usage()));
    }
    const auto border = arguments.begin() + static_cast<std::ptrdiff_t>(designFiles);
    m_design.assign(arguments.begin(), border);
    m_own.assign(border, arguments.end());
    if (common.verilog.given() && !m_design.empty() && !isVerilogName(m_design.front())) {
        throw wrongUsage(fmt::format("-I, -D and -f go with Verilog sources, which '{}' is not", m_design.front()));
    }
}

std::vector<std::string> DesignCommand::prepare(CommonOptions &common)
{
    std::vector<std::string> sources;
    for (const std::string &list : common.verilog.fileLists) {
        readFileList(list, sources, common.verilog);
    }
    m_design.insert(m_design.begin(), sources.begin(), sources.end());
    if (m_design.empty()) {
        throw refused(common.verilog.fileLists.front(), "names no source");
    }
    return m_design;
}

std::vector<std::string> DesignCommand::prepareForms(CommonOptions &common, const std::string &postMap)
{
    std::vector<std::string> files = DesignCommand::prepare(common);
    if (!postMap.empty()) {
        if (common.form) {
            throw wrongUsage(
                fmt::format("{}: --form goes with one netlist; of two, the first is the elaborated one", name()));
        }
        checkStandardInput(files.front(), postMap);
        files.push_back(postMap);
    }
    return files;
}

std::vector<std::unique_ptr<Command>> makeCommands()
{
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(makeInfoCommand());
    commands.push_back(makeTreeCommand());
    commands.push_back(makeSearchCommand());
    commands.push_back(makeClocksCommand());
    commands.push_back(makeClockOfCommand());
    commands.push_back(makeCrossingsCommand());
    commands.push_back(makeProbesCommand());
    commands.push_back(makeMapCommand());
    commands.push_back(makePlanCommand());
    commands.push_back(makeHtmlCommand());
    commands.push_back(makeServeCommand());
    commands.push_back(makeSaveCommand());
    commands.push_back(makeChecksumCommand());
    return commands;
}

} // namespace kvr::netlistdb::tool
