#pragma once

#include "base/Terminal.h"

#include <chrono>
#include <cstdint>
#include <string>

namespace kvr::netlistdb::tool {

/// One line on standard error that says what the program is doing, rewritten in place. Silent unless standard error is
/// a terminal.
class Progress {
  public:
    explicit Progress(When when);
    /// Erases the line.
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// Starts a new phase, shown at once.
    void begin(const std::string &what);
    /// Shows how much of the phase is done, at most ten times a second.
    void update(std::uint64_t done, std::uint64_t total);
    /// Erases the line, before anything else is written to the terminal.
    void clear();

  private:
    void show(const std::string &line);

    bool m_enabled;
    bool m_shown = false;
    std::string m_what;
    std::chrono::steady_clock::time_point m_last;
};

} // namespace kvr::netlistdb::tool
