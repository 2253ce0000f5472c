#include "base/Stats.h"

#include "base/StandardError.h"

#include <fmt/format.h>
#include <fstream>

namespace kvr::netlistdb::tool {

namespace {

/// getrusage would also count what the process was before it became this program.
std::uint64_t peakKibibytes()
{
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        if (word == "VmHWM:") {
            std::uint64_t kibibytes = 0;
            status >> kibibytes;
            return kibibytes;
        }
    }
    return 0;
}

} // namespace

void Stats::begin(const std::string &name)
{
    end();
    m_current = name;
    m_start = Clock::now();
}

void Stats::end()
{
    if (!m_current.empty()) {
        const std::chrono::duration<double> spent = Clock::now() - m_start;
        m_phases.push_back({m_current, spent.count(), peakKibibytes()});
        m_current.clear();
    }
}

void Stats::print() const
{
    const auto line = [](const std::string &name, double seconds, std::uint64_t kibibytes) {
        say(fmt::format("{:<10}{:>10.3f} s{:>12.1f} MiB\n", name, seconds, static_cast<double>(kibibytes) / 1024));
    };
    double seconds = 0;
    for (const Phase &phase : m_phases) {
        line(phase.name, phase.seconds, phase.peakKibibytes);
        seconds += phase.seconds;
    }
    line("total", seconds, peakKibibytes());
}

} // namespace kvr::netlistdb::tool
