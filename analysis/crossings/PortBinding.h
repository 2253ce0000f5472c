#pragma once

#include "analysis/DesignModel.h"
#include "analysis/crossings/ClockSets.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis {

/// What the ports of a module are connected to where it is used. Clocks are numbers that the user of the binding
/// chooses; clocks that begin inside are @p firstClock and up.
struct PortBinding {
    std::vector<std::uint32_t> launch;  ///< by port: what comes in, a set
    std::vector<std::uint32_t> capture; ///< by port: what goes out is captured by, a set
    std::vector<std::uint32_t> clock;   ///< by port: the clock that comes in, or NONE
    std::uint32_t firstClock = 0;
};

/// Reads the sets of modules in the light of what their ports are bound to.
class BoundModules {
  public:
    BoundModules(const DesignModel &design, ClockSets &sets) : m_design(design), m_sets(sets) {}

    const DesignModel &design() const { return m_design; }
    /// Of a leaf cell.
    const CellModel &model(std::uint32_t module, std::uint32_t cell) const
    {
        return m_design.hierarchy.models[m_design.hierarchy.modules[module].modelOf(cell)];
    }
    ClockSets &sets() const { return m_sets; }

    /// The top, whose ports are bound to nothing.
    PortBinding top() const;
    /// Of instance @p sub of @p module, which is bound by @p outer.
    PortBinding inside(std::uint32_t module, const PortBinding &outer, std::uint32_t sub) const;

    /// Clocks whose registers reach @p net, with the flags of Reaching.
    std::uint32_t launch(std::uint32_t module, const PortBinding &binding, std::uint32_t net) const;
    /// Clocks whose registers @p net reaches.
    std::uint32_t capture(std::uint32_t module, const PortBinding &binding, std::uint32_t net) const;
    /// The clock that @p net is electrically, or NONE.
    std::uint32_t clock(std::uint32_t module, const PortBinding &binding, std::uint32_t net) const;

  private:
    const DesignModel &m_design;
    ClockSets &m_sets;
};

} // namespace kvr::netlistdb::analysis
