#pragma once

#include "analysis/FanIn.h"

#include <netlistdb/analysis/Clocks.h>

#include <vector>

namespace kvr::netlistdb::analysis {

/// Turns walks into chains with names and source positions.
class ChainWriter {
  public:
    explicit ChainWriter(const DesignModel &design) : m_design(design) {}

    /// From the start of @p walk to @p node, which is left by @p end.
    std::vector<ChainStep> data(const FanIn &walk, std::uint32_t node, const FanIn::Way &end) const;
    /// From a net back to what it is electrically.
    std::vector<ChainStep> clock(Place place) const;

  private:
    ChainStep step(const Place &place, const FanIn::Way &way) const;

    const DesignModel &m_design;
};

} // namespace kvr::netlistdb::analysis
