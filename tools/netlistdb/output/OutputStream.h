#pragma once

#include "output/OutputTarget.h"

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace kvr::netlistdb::tool {

class TemporaryPaths;

/// The one writer of results: to a stream, to a device or pipe in its place, or to a file that appears under its name
/// only when it is whole and keeps mode and owner of the one whose place it takes.
class OutputStream {
  public:
    /// Opens @p name; empty or "-": standard output. @p inputs are files that it may not be.
    /// @throws Failure when it cannot be written.
    OutputStream(const std::string &name, const std::vector<std::string> &inputs, TemporaryPaths &temporaries);
    /// Without close(), what was written to a file is thrown away.
    ~OutputStream();
    OutputStream(const OutputStream &) = delete;
    OutputStream &operator=(const OutputStream &) = delete;

    /// @throws Failure when writing fails, OutputClosed when nobody reads standard output any more.
    void write(std::string_view text);
    /// Hands on what is older than a moment, so that a slow result is seen while it grows.
    void tick();
    /// Hands on everything.
    void flush();
    /// Hands on everything and, for a file, puts it in place. Further calls do nothing.
    void close();
    bool isStandardOutput() const { return m_target.kind == OutputTarget::Kind::Stream && m_target.descriptor == 1; }
    /// True when somebody may be watching the result grow.
    bool isTerminal() const;
    const OutputTarget &target() const { return m_target; }
    /// Makes @p file, a whole temporary file, the content of the output, to which nothing was written. The file may be
    /// moved; it is quickest on the file system of the target's directory.
    void takeFile(const std::string &file);

  private:
    void keepModeAndOwner() const;
    void copy(const std::string &file);
    [[noreturn]] void fail() const;

    std::string m_name;
    TemporaryPaths &m_temporaries;
    OutputTarget m_target;
    std::string m_temporary; ///< the unfinished file; empty: written in place
    int m_descriptor = -1;
    std::string m_buffer;
    std::chrono::steady_clock::time_point m_flushed;
};

} // namespace kvr::netlistdb::tool
