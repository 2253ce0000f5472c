#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace kvr::netlistdb::tool {

/// Where results go: standard output, or a file that appears under its name only when it is whole.
class OutputStream {
  public:
    /// Opens @p path; empty or "-": standard output.
    /// @throws Failure when the file cannot be made.
    explicit OutputStream(const std::string &path);
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
    bool isStandardOutput() const { return m_path.empty(); }
    /// True when somebody may be watching the result grow.
    bool isTerminal() const;

  private:
    [[noreturn]] void fail() const;

    std::string m_path;      ///< of the finished file; empty: standard output
    std::string m_temporary; ///< of the unfinished file; empty: written in place
    int m_descriptor;
    std::string m_buffer;
    std::chrono::steady_clock::time_point m_flushed;
};

} // namespace kvr::netlistdb::tool
