#pragma once

namespace kvr::netlistdb::tool {

/// Exit codes of the program.
enum ExitCode : int {
    EXIT_FOUND = 0,
    EXIT_NOTHING_FOUND = 1,
    EXIT_WRONG_USAGE = 2,
    EXIT_REFUSED = 3,     ///< a file cannot be read, is refused, or cannot be written
    EXIT_BY_SIGNAL = 128, ///< plus the number of the signal; 130 after Ctrl-C
};

} // namespace kvr::netlistdb::tool
