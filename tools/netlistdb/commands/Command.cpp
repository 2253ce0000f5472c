#include "commands/Command.h"

#include "base/Failure.h"
#include "design/Design.h"

#include <fmt/format.h>

namespace kvr::netlistdb::tool {

Command::~Command() = default;

void DesignCommand::addOptions(CLI::App &app, CommonOptions &common)
{
    addDesignOptions(app, common);
    addOutputOptions(app, common);
    addReportOptions(app, common);
}

void DesignCommand::takeArguments(std::vector<std::string> arguments)
{
    const auto usage = [this] { return fmt::format("usage: netlistdb {} {}", name(), this->arguments()); };
    const std::size_t least = leastOwnArguments();
    if (arguments.size() < 1 + least) {
        throw wrongUsage(
            fmt::format("{}; {}", arguments.empty() ? "no design given" : "an argument is missing", usage()));
    }
    // Arguments of the command itself may look like Verilog sources, too: the last ones are always its own.
    std::size_t designFiles = 1;
    while (isVerilogName(arguments.front()) && designFiles + least < arguments.size() &&
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
}

std::vector<std::unique_ptr<Command>> makeCommands()
{
    std::vector<std::unique_ptr<Command>> commands;
    commands.push_back(makeInfoCommand());
    commands.push_back(makeTreeCommand());
    commands.push_back(makeSearchCommand());
    commands.push_back(makeClocksCommand());
    commands.push_back(makeClockOfCommand());
    commands.push_back(makeProbesCommand());
    commands.push_back(makeSaveCommand());
    commands.push_back(makeChecksumCommand());
    return commands;
}

} // namespace kvr::netlistdb::tool
