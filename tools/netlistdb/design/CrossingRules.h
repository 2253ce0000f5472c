#pragma once

#include "design/NamePattern.h"

#include <cstdint>
#include <memory>
#include <netlistdb/analysis/Crossings.h>
#include <set>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// What a file of groups and waivers says about the crossings of a design:
///
///     clock_groups [-asynchronous | -exclusive] CLOCK… , CLOCK… [, …]
///     waive FROM TO [class=CLASS,…] REASON…
///
/// Words are separated by blanks; `"…"` keeps blanks in a word. `#` at the beginning of a word starts a comment. CLOCK,
/// FROM and TO are wildcards for whole names.
class CrossingRules {
  public:
    /// A crossing that somebody looked at and took for good.
    class Waiver {
      public:
        Waiver(unsigned line, const std::string &from, const std::string &to, std::uint32_t kinds, std::string reason);
        bool matches(const analysis::Crossing &crossing, const analysis::ClockMap &clocks) const;
        unsigned line() const { return m_line; }
        const std::string &text() const { return m_text; }
        const std::string &reason() const { return m_reason; }

      private:
        /// A wildcard for one end.
        struct End {
            explicit End(const std::string &text);
            bool matches(const analysis::CrossingEnd &end, const std::string &clock) const;
            bool isClock; ///< the wildcard is for the name of the clock
            std::unique_ptr<const NamePattern> pattern;
        };
        unsigned m_line;
        std::string m_text;
        End m_from;
        End m_to;
        std::uint32_t m_kinds; ///< mask of CrossingClass
        std::string m_reason;
    };

    /// Rules without any.
    CrossingRules() = default;
    /// @throws Failure for a file that cannot be read or understood.
    explicit CrossingRules(const std::string &file);

    /// The groups in terms of the clocks of a design.
    std::vector<analysis::ClockGroups> groups(const analysis::ClockMap &clocks);
    /// The first waiver for a crossing, or null.
    const Waiver *waiverOf(const analysis::Crossing &crossing, const analysis::ClockMap &clocks) const;
    using Used = std::set<const Waiver *>;
    /// A line for every waiver that is not in @p used and every wildcard of groups() that no clock matches.
    std::vector<std::string> unused(const Used &used) const;

  private:
    struct Groups {
        analysis::ClockGroups::Kind kind;
        unsigned line;
        std::vector<std::vector<std::string>> patterns;
    };

    void readLine(const std::vector<std::string> &words, unsigned line);
    void readGroups(const std::vector<std::string> &words, unsigned line);
    void readWaiver(const std::vector<std::string> &words, unsigned line);
    [[noreturn]] void fail(unsigned line, const std::string &fault) const;
    std::string at(unsigned line) const;

    std::string m_file;
    std::vector<Groups> m_groups;
    std::vector<Waiver> m_waivers;
    std::vector<std::string> m_unknownClocks;
};

} // namespace kvr::netlistdb::tool
