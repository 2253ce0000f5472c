#include "app/CommandLine.h"

#include "base/Failure.h"
#include "base/StandardError.h"
#include "base/TemporaryPaths.h"
#include "commands/Command.h"
#include "design/NearestNames.h"
#include "output/OutputStream.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

namespace kvr::netlistdb::tool {

namespace {

constexpr const char *MORE =
    "DESIGN is a netlist written by yosys (write_json), a netlist written by `netlistdb save`, or\n"
    "Verilog sources (.v, .sv; read with yosys).\n\n"
    "Exit codes: 0 found, 1 nothing found, 2 wrong usage, 3 a file cannot be read, is refused\n"
    "or cannot be written, 130 interrupted.\n\n"
    "Examples:\n"
    "  netlistdb info soc.json\n"
    "  netlistdb search soc.json tx_ready\n"
    "  netlistdb clock-of soc.json u_uart/tx_shift_q\n\n"
    "`netlistdb COMMAND --help` shows the options of a command, with examples.\n";

/// Help in which the usage line of a command shows its arguments by their names.
class HelpFormatter : public CLI::Formatter {
  public:
    explicit HelpFormatter(std::string usage) : m_usage(std::move(usage)) { column_width(34); }
    std::string make_usage(const CLI::App * /*app*/, std::string /*name*/) const override
    {
        return "Usage: netlistdb " + m_usage + "\n";
    }

  private:
    std::string m_usage;
};

using Words = std::vector<std::string>;

std::string oneLine(std::string text)
{
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

using Commands = std::vector<std::unique_ptr<Command>>;

/// The command called @p name.
/// @throws Failure when there is none.
std::unique_ptr<Command> takeCommand(Commands &commands, const std::string &name)
{
    NearestNames nearest(name);
    for (std::unique_ptr<Command> &command : commands) {
        if (command->name() == name) {
            return std::move(command);
        }
        nearest.offer(command->name());
    }
    throw wrongUsage("unknown command '" + name + "'" + didYouMean(nearest.best()) + " (netlistdb --help lists them)");
}

/// Prints the help or version that @p request asks for.
int show(const CLI::App &app, const CLI::ParseError &request)
{
    std::ostringstream text;
    const int exitCode = app.exit(request, text, text);
    TemporaryPaths none;
    OutputStream output("", {}, none);
    output.write(text.str());
    output.close();
    return exitCode;
}

/// Takes the options of the program itself: help and version.
int parseProgramOptions(Words arguments, const Commands &commands)
{
    CLI::App app("Answers questions about a synthesized FPGA design.", "netlistdb");
    app.formatter(std::make_shared<HelpFormatter>("COMMAND DESIGN... [OPTIONS]"));
    app.footer(std::string("\n") + MORE);
    app.set_version_flag("--version", "netlistdb " NETLISTDB_VERSION, "Print the version and exit");
    for (const std::unique_ptr<Command> &command : commands) {
        app.add_subcommand(command->name(), command->summary());
    }
    if (arguments.empty()) {
        say(app.help());
        return EXIT_WRONG_USAGE;
    }
    try {
        std::reverse(arguments.begin(), arguments.end()); // as CLI11 wants them
        app.parse(arguments);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) {
            return show(app, error);
        }
        throw wrongUsage(oneLine(error.what()));
    }
    throw wrongUsage("no command given (netlistdb --help lists them)");
}

/// Parts @p arguments into options, which go to @p app, and the others, which are handled. Everything behind `--` is
/// no option. CLI11's own positional arguments would take brackets for lists.
Words parseOptions(CLI::App &app, Words arguments)
{
    const auto mark = std::find(arguments.begin(), arguments.end(), "--");
    const Words behindMark(mark == arguments.end() ? mark : mark + 1, arguments.end());
    arguments.erase(mark, arguments.end());
    std::reverse(arguments.begin(), arguments.end()); // as CLI11 wants them
    app.allow_extras();
    app.parse(arguments);
    Words others = app.remaining();
    for (const std::string &other : others) {
        if (other.size() > 1 && other.front() == '-') {
            NearestNames nearest(other);
            for (const CLI::Option *option : app.get_options()) {
                nearest.offer(option->get_name());
            }
            throw wrongUsage("unknown option '" + other + "'" + didYouMean(nearest.best()));
        }
    }
    others.insert(others.end(), behindMark.begin(), behindMark.end());
    return others;
}

} // namespace

std::unique_ptr<Request> parseCommandLine(int argc, const char *const *argv)
{
    auto request = std::make_unique<Request>();
    Words arguments(argv + std::min(argc, 1), argv + argc);
    if (arguments.size() > 1 && arguments.front() == "help") {
        arguments = {arguments[1], "--help"};
    }
    Commands commands = makeCommands();
    if (arguments.empty() || arguments.front() == "help" || arguments.front().substr(0, 1) == "-") {
        if (!arguments.empty() && arguments.front() == "help") {
            arguments = {"--help"};
        }
        request->exitCode = parseProgramOptions(std::move(arguments), commands);
        return request;
    }
    std::unique_ptr<Command> command = takeCommand(commands, arguments.front());
    arguments.erase(arguments.begin());

    const std::string name = command->name();
    CLI::App app(std::string(command->summary()) + ".", "netlistdb " + name);
    app.formatter(std::make_shared<HelpFormatter>(name + " " + command->arguments()));
    app.footer(std::string("\n") + command->more() + "\n");
    command->addOptions(app, request->options);
    try {
        command->takeArguments(parseOptions(app, std::move(arguments)), request->options);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() == 0) {
            request->exitCode = show(app, error);
            return request;
        }
        throw wrongUsage(name + ": " + oneLine(error.what()));
    } catch (const Failure &failure) {
        throw Failure(failure.exitCode(), name + ": " + failure.what());
    }
    request->command = std::move(command);
    return request;
}

} // namespace kvr::netlistdb::tool
