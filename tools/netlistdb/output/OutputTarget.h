#pragma once

#include <string>
#include <sys/stat.h>
#include <vector>

namespace kvr::netlistdb::tool {

/// What a name given for output leads to, and how it may be written.
struct OutputTarget {
    enum class Kind {
        Stream, ///< an open stream of this process, such as standard output
        Place,  ///< a device, a pipe: written where it is
        File,   ///< a regular file, there or not: appears when it is whole
    };

    Kind kind = Kind::Stream;
    int descriptor = 1;    ///< of a stream
    std::string path;      ///< without symbolic links at its end; empty for a stream
    bool exists = false;   ///< a regular file is there
    struct stat status {}; ///< of that file

    /// Directory of the file.
    std::string directory() const;
};

/// Finds out where @p name leads; empty and "-" are standard output.
/// @throws Failure when it cannot be written, or is one of @p inputs.
OutputTarget findTarget(const std::string &name, const std::vector<std::string> &inputs);

} // namespace kvr::netlistdb::tool
