#pragma once

#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

class Interrupt;

/// What a program that was run left behind.
struct ChildResult {
    int startError = 0;               ///< an errno when it could not be started at all
    int status = 0;                   ///< as waitpid() gives it
    std::vector<std::string> outputs; ///< what it wrote to descriptors 2, 3, and so on
};

/// Runs @p words, found in PATH, with nothing on standard input and standard output thrown away, and takes what it
/// writes to standard error and to @p more further descriptors, which it finds open as 3, 4 and so on. A signal to this
/// process ends the program and everything that it started.
/// @throws Interrupted
ChildResult runChild(const std::vector<std::string> &words, std::size_t more, Interrupt &interrupt);

} // namespace kvr::netlistdb::tool
