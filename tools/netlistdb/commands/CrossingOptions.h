#pragma once

#include <cstdint>
#include <netlistdb/analysis/Crossings.h>
#include <string>

namespace CLI {
class App;
}

namespace kvr::netlistdb::tool {

/// The classes that a command shows: all until some are chosen.
class CrossingClasses {
  public:
    void add(analysis::CrossingClass kind) { m_mask |= 1U << static_cast<unsigned>(kind); }
    bool has(analysis::CrossingClass kind) const
    {
        return m_mask == 0 || (m_mask >> static_cast<unsigned>(kind) & 1U) != 0;
    }
    void clear() { m_mask = 0; }

  private:
    std::uint32_t m_mask = 0;
};

/// The severities that a command shows: all until some are chosen.
class Severities {
  public:
    void add(analysis::Severity severity) { m_mask |= 1U << static_cast<unsigned>(severity); }
    bool has(analysis::Severity severity) const
    {
        return m_mask == 0 || (m_mask >> static_cast<unsigned>(severity) & 1U) != 0;
    }
    void clear() { m_mask = 0; }

  private:
    std::uint32_t m_mask = 0;
};

/// What makes a command fail: classes, and severities with those that are worse.
class CrossingFailures {
  public:
    void add(analysis::CrossingClass kind) { m_mask |= 1U << static_cast<unsigned>(kind); }
    void add(analysis::Severity severity)
    {
        for (std::size_t number = 0; number < analysis::CROSSING_CLASSES; ++number) {
            const auto kind = static_cast<analysis::CrossingClass>(number);
            if (severityOf(kind) >= severity) {
                add(kind);
            }
        }
    }
    bool given() const { return m_mask != 0; }
    bool has(analysis::CrossingClass kind) const { return (m_mask >> static_cast<unsigned>(kind) & 1U) != 0; }
    void clear() { m_mask = 0; }

  private:
    std::uint32_t m_mask = 0;
};

// Options that take a list of names, separated by commas; the last of repeated ones counts.

void addClasses(CLI::App &app, const std::string &flag, CrossingClasses &target, const std::string &help);
void addSeverities(CLI::App &app, const std::string &flag, Severities &target, const std::string &help);
void addFailures(CLI::App &app, const std::string &flag, CrossingFailures &target, const std::string &help);

} // namespace kvr::netlistdb::tool
