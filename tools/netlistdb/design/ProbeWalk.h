#pragma once

#include "design/Kinds.h"
#include "design/LevelWalk.h"
#include "design/ProbeList.h"
#include "design/Verdicts.h"

#include <netlistdb/analysis/ProbeReport.h>
#include <vector>

namespace kvr::netlistdb {
class IVDBInstance;
class IVDBNetlist;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::tool {

/// Which nets and buses a report about probing shows.
struct ProbeChoice {
    bool all = false; ///< those that no user declared, too
    Kinds kinds;
    Verdicts verdicts; ///< finished
};

/// A net or bus in its place, with what there is to say about probing it.
struct ReportedProbe {
    IVDBInstance *instance = nullptr;
    const Probe *probe = nullptr; ///< owned by the lists
    analysis::SignalReport report;
};

/// The nets and buses in an instance and below it, level by level, as a search goes.
class ProbeWalk {
  public:
    /// @p lists and @p report, which is about their design, must outlive the object.
    ProbeWalk(ProbeLists &lists, const analysis::ProbeReport &report, IVDBInstance &start, const ProbeChoice &choice)
        : m_lists(lists), m_report(report), m_choice(choice), m_walk(start)
    {
    }

    /// What a step led to.
    enum class Step { Found, Passed, End };
    /// Looks at the next net or bus, and fills in @p found when it is to be shown.
    Step step(ReportedProbe &found);
    /// The report of what a step has found, once more.
    analysis::SignalReport reportOf(const IVDBInstance &instance, const Probe &probe) const;

  private:
    bool isChosen(const Probe &probe) const;

    ProbeLists &m_lists;
    const analysis::ProbeReport &m_report;
    ProbeChoice m_choice;
    LevelWalk m_walk;
    IVDBInstance *m_instance = nullptr;
    const std::vector<Probe> *m_probes = nullptr; ///< of m_instance
    std::size_t m_next = 0;
};

} // namespace kvr::netlistdb::tool
