#pragma once

#include "analysis/Lists.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace kvr::netlistdb::analysis {

/// Sets of clocks, each held once, with a mask of further flags. Set 0 is empty.
class ClockSets {
  public:
    ClockSets() { intern({}, 0); }

    /// @p clocks: in any order, repetitions among them.
    std::uint32_t intern(std::vector<std::uint32_t> clocks, std::uint32_t flags)
    {
        std::sort(clocks.begin(), clocks.end());
        clocks.erase(std::unique(clocks.begin(), clocks.end()), clocks.end());
        const auto [found, isNew] =
            m_numbers.try_emplace({std::move(clocks), flags}, static_cast<std::uint32_t>(m_sets.size()));
        if (isNew) {
            m_sets.push_back(&found->first);
        }
        return found->second;
    }

    const std::vector<std::uint32_t> &clocks(std::uint32_t set) const { return m_sets[set]->first; }
    std::uint32_t flags(std::uint32_t set) const { return m_sets[set]->second; }
    bool contains(std::uint32_t set, std::uint32_t clock) const
    {
        return std::binary_search(clocks(set).begin(), clocks(set).end(), clock);
    }
    bool containsOther(std::uint32_t set, std::uint32_t clock) const
    {
        return clocks(set).size() > 1 || (clocks(set).size() == 1 && clocks(set).front() != clock);
    }

  private:
    using Set = std::pair<std::vector<std::uint32_t>, std::uint32_t>;
    std::map<Set, std::uint32_t> m_numbers;
    std::vector<const Set *> m_sets;
};

} // namespace kvr::netlistdb::analysis
