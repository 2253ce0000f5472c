#pragma once

#include "analysis/BoundSets.h"
#include "analysis/DesignModel.h"

#include <netlistdb/analysis/Clocks.h>

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis {

/// The clocks of a design as callers see them.
class ClockTable {
  public:
    explicit ClockTable(const DesignModel &design);

    const std::vector<Clock> &clocks() const { return m_clocks; }
    /// The clock with a number among all clocks of the design, or NONE when it clocks nothing.
    ClockId idOf(std::uint32_t number) const { return m_ids[number]; }
    /// The number among all clocks of the design.
    std::uint32_t numberOf(ClockId clock) const { return m_numbers[clock]; }
    bool related(ClockId a, ClockId b) const;
    std::size_t memory() const;

  private:
    void findParents(const DesignModel &design);
    void nameAsInDatabase(const DesignModel &design);
    void sortByName();
    std::vector<bool> ancestorsOf(ClockId clock) const;

    std::vector<Clock> m_clocks;
    std::vector<std::uint32_t> m_numbers;
    std::vector<ClockId> m_ids;
};

} // namespace kvr::netlistdb::analysis
