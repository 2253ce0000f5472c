#pragma once

#include "output/ResultWriter.h"

#include <netlistdb/analysis/CrossProbe.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// All grades, the surest first.
inline constexpr std::array GRADES = {analysis::ProbeGrade::Exact,      analysis::ProbeGrade::Register,
                                      analysis::ProbeGrade::Structural, analysis::ProbeGrade::Merged,
                                      analysis::ProbeGrade::Gone,       analysis::ProbeGrade::Unknown};

/// A net that is to be shown with what it is in the other form.
struct MatchedNet {
    IVDBInstance *instance;
    IVDBNet *net;
    std::string name; ///< full name
};

/// Writes matches bit by bit; in tables, neighbouring bits of a bus that fare alike share a row.
class MatchRows {
  public:
    explicit MatchRows(ResultWriter &writer) : m_writer(writer) {}

    static std::vector<Column> columns();
    void add(const std::string &net, analysis::ProbeMatch match);
    /// Writes what still waits.
    void finish();
    /// True when there was anything.
    bool written() const { return m_written; }

  private:
    /// Bits of one bus side by side, or one net.
    struct Run {
        std::string vector; ///< empty for a net that is no bit
        int first = 0;
        int last = 0;
        std::string net;
        std::string target;
        std::string targetVector;
        int targetFirst = 0;
        int targetLast = 0;
        analysis::ProbeMatch match;
    };

    static Run runOf(const std::string &net, analysis::ProbeMatch match);
    static bool continues(const Run &run, const Run &next);
    void write(const Run &run);

    ResultWriter &m_writer;
    std::optional<Run> m_run;
    bool m_written = false;
};

} // namespace kvr::netlistdb::tool
