#pragma once

#include <netlistdb/analysis/Crossings.h>

#include <map>
#include <utility>
#include <vector>

namespace kvr::netlistdb::analysis {

/// What is known about pairs of clocks: by the netlist, and by the designer.
class ClockRelations {
  public:
    ClockRelations(const ClockMap &map, const std::vector<ClockGroups> &groups) : m_map(map), m_groups(groups) {}

    /// Whether two clocks are in step: the last group statement that mentions both decides, otherwise a common
    /// ancestor.
    bool related(ClockId a, ClockId b);
    /// Whether two clocks never run at the same time.
    bool exclusive(ClockId a, ClockId b) const;

  private:
    bool find(ClockId a, ClockId b) const;

    const ClockMap &m_map;
    const std::vector<ClockGroups> &m_groups;
    std::map<std::pair<ClockId, ClockId>, bool> m_known;
};

} // namespace kvr::netlistdb::analysis
