#pragma once

#include "base/ExitCode.h"

#include <stdexcept>
#include <string>

namespace kvr::netlistdb::tool {

/// The end of a run with a message of one line and an exit code.
class Failure : public std::runtime_error {
  public:
    Failure(ExitCode exitCode, const std::string &message) : std::runtime_error(message), m_exitCode(exitCode) {}
    ExitCode exitCode() const { return m_exitCode; }

  private:
    ExitCode m_exitCode;
};

/// The command line asks for something that cannot be.
inline Failure wrongUsage(const std::string &message)
{
    return {EXIT_WRONG_USAGE, message};
}

/// @p file cannot be read, is refused, or cannot be written.
inline Failure refused(const std::string &file, const std::string &fault)
{
    return {EXIT_REFUSED, file + ": " + fault};
}

/// A signal asked the program to stop, before it had anything to show.
class Interrupted : public std::runtime_error {
  public:
    Interrupted() : std::runtime_error("interrupted") {}
};

/// The reader of standard output has gone away: nobody is left to write for, and this is no error.
class OutputClosed : public std::runtime_error {
  public:
    OutputClosed() : std::runtime_error("output closed") {}
};

} // namespace kvr::netlistdb::tool
