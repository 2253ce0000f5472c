#pragma once

#include "design/Census.h"
#include "design/CrossingRows.h"
#include "design/Design.h"
#include "design/PathResolver.h"
#include "design/ProbeList.h"

#include <array>
#include <memory>
#include <netlistdb/analysis/Crossings.h>
#include <optional>
#include <string>

namespace kvr::netlistdb::tool {

class Call;
class Interrupt;

/// One form of a design, with what questions about it rest on. Everything is made when it is first needed, once.
class ServedForm {
  public:
    /// @p rules is a file of clock groups and waivers; empty for none.
    ServedForm(std::unique_ptr<Design> design, const std::string &rules, const Interrupt &interrupt);

    Design &design() { return *m_design; }
    PathResolver &paths() { return m_paths; }
    ProbeLists &probes() { return m_probes; }
    // A null call is that of nobody: of what is made beforehand.
    const analysis::ClockMap &clocks(Call *call);
    const Census &census(Call *call);
    const analysis::NetCounts &counts(Call *call);
    const CrossingRows &crossings(CrossingRows::Options options, Call *call);

  private:
    std::unique_ptr<Design> m_design;
    PathResolver m_paths;
    ProbeLists m_probes;
    CrossingRules m_rules;
    const Interrupt &m_interrupt;
    bool m_hasClocks = false;
    std::optional<Census> m_census;
    std::optional<analysis::NetCounts> m_counts;
    std::unique_ptr<const analysis::Crossings> m_crossings;
    std::array<std::unique_ptr<const CrossingRows>, 4> m_crossingRows; ///< by options
};

} // namespace kvr::netlistdb::tool
