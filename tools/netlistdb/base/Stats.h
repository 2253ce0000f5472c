#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// Time of each phase of a run, and the most memory the process had taken by its end.
class Stats {
  public:
    /// Ends the phase before, if any, and starts @p name.
    void begin(const std::string &name);
    /// Ends the current phase.
    void end();
    /// Writes the table to standard error.
    void print() const;

  private:
    using Clock = std::chrono::steady_clock;

    struct Phase {
        std::string name;
        double seconds;
        std::uint64_t peakKibibytes;
    };

    std::vector<Phase> m_phases;
    std::string m_current;
    Clock::time_point m_start;
};

} // namespace kvr::netlistdb::tool
