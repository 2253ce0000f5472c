#pragma once

#include "base/Terminal.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>

namespace kvr::netlistdb::tool {

/// One line on standard error that says what the program is doing, rewritten in place. Silent unless standard error is
/// a terminal. Or, for somebody else to show: what and how much is handed over.
class Progress {
  public:
    explicit Progress(When when);
    /// Takes what is done, how much of it and of how much; the last are 0 at the beginning of a phase.
    using Sink = std::function<void(const std::string &what, std::uint64_t done, std::uint64_t total)>;
    /// Writes nothing; calls @p sink, on the thread that does the work, with each phase and at each update().
    explicit Progress(Sink sink) : m_enabled(false), m_sink(std::move(sink)) {}
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
    Sink m_sink;
    std::string m_what;
    std::chrono::steady_clock::time_point m_last;
};

} // namespace kvr::netlistdb::tool
