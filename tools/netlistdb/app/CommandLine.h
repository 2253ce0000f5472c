#pragma once

#include "commands/CommonOptions.h"

#include <memory>

namespace kvr::netlistdb::tool {

class Command;

/// What the command line asks for.
struct Request {
    std::unique_ptr<Command> command; ///< null: there is nothing left to do
    CommonOptions options;
    int exitCode = 0; ///< without a command
};

/// Understands the command line; prints help and version itself. The request must stay where it is: the commands'
/// options are bound to it.
/// @throws Failure
std::unique_ptr<Request> parseCommandLine(int argc, const char *const *argv);

} // namespace kvr::netlistdb::tool
