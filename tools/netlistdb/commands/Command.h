#pragma once

#include "commands/CommonOptions.h"

#include <memory>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

class Session;

/// One command of the program: its options, and what it does.
class Command {
  public:
    virtual ~Command();

    virtual const char *name() const = 0;
    /// One line for the list of commands.
    virtual const char *summary() const = 0;
    /// What follows the name of the command on a command line.
    virtual const char *arguments() const = 0;
    /// What the help ends with: examples, and what is worth knowing.
    virtual const char *more() const = 0;
    /// Adds options of its own and those it shares to @p app.
    virtual void addOptions(CLI::App &app, CommonOptions &common) = 0;
    /// Takes the arguments that are no options; those are known by now.
    /// @throws Failure
    virtual void takeArguments(std::vector<std::string> arguments, const CommonOptions &common) = 0;
    /// Gets ready to run once options and arguments are known; returns the files that will be read.
    /// @throws Failure
    virtual std::vector<std::string> prepare(CommonOptions &common) = 0;
    /// Runs the command; returns the exit code.
    virtual int run(Session &session) = 0;

  protected:
    /// @throws Failure  when two netlists are both to be read from standard input
    void checkStandardInput(const std::string &elaborated, const std::string &postMap) const;
};

/// A command whose first argument is the design: several Verilog sources, or one file; none where a file list names the
/// sources. Unless it says otherwise it takes nothing else, and the options of design, output and report.
class DesignCommand : public Command {
  public:
    const char *arguments() const override { return "DESIGN... [OPTIONS]"; }
    void addOptions(CLI::App &app, CommonOptions &common) override;
    void takeArguments(std::vector<std::string> arguments, const CommonOptions &common) override;
    std::vector<std::string> prepare(CommonOptions &common) override;

  protected:
    /// Bounds of the number of arguments behind the design.
    virtual std::size_t leastOwnArguments() const { return 0; }
    virtual std::size_t mostOwnArguments() const { return leastOwnArguments(); }

    /// The files of the design, and those of its second form @p postMap unless that is empty.
    /// @throws Failure
    std::vector<std::string> prepareForms(CommonOptions &common, const std::string &postMap);

    std::vector<std::string> m_design;
    std::vector<std::string> m_own;
};

/// Every command, in the order of the help.
std::vector<std::unique_ptr<Command>> makeCommands();

std::unique_ptr<Command> makeInfoCommand();
std::unique_ptr<Command> makeTreeCommand();
std::unique_ptr<Command> makeSearchCommand();
std::unique_ptr<Command> makeClocksCommand();
std::unique_ptr<Command> makeClockOfCommand();
std::unique_ptr<Command> makeCrossingsCommand();
std::unique_ptr<Command> makeProbesCommand();
std::unique_ptr<Command> makeMapCommand();
std::unique_ptr<Command> makePlanCommand();
std::unique_ptr<Command> makeHtmlCommand();
std::unique_ptr<Command> makeServeCommand();
std::unique_ptr<Command> makeSaveCommand();
std::unique_ptr<Command> makeChecksumCommand();

} // namespace kvr::netlistdb::tool
