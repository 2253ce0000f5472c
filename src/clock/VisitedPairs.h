#pragma once

#include "clock/InstanceNetHash.h"

#include <netlistdb/InstanceNetSet.h>

#include <cstddef>
#include <unordered_set>
#include <vector>

namespace kvr::netlistdb {

/// The (instance, net) pairs met by one query, in the order in which they were met.
///
/// Most queries meet a handful of pairs, some meet millions: few pairs are looked up by walking them, more through a
/// hash table.
class VisitedPairs {
  public:
    /// Adds @p pair; returns whether it was new.
    bool insert(const InstanceNet &pair);
    bool contains(const InstanceNet &pair) const;
    bool empty() const { return m_pairs.empty(); }
    void clear();

    std::vector<InstanceNet>::const_iterator begin() const { return m_pairs.begin(); }
    std::vector<InstanceNet>::const_iterator end() const { return m_pairs.end(); }

  private:
    static constexpr std::size_t FEW = 12;
    static constexpr std::size_t KEPT = 4096; ///< storage that is kept between queries, in pairs

    std::vector<InstanceNet> m_pairs;
    std::unordered_set<InstanceNet, InstanceNetHash> m_table; ///< empty while there are few pairs
};

} // namespace kvr::netlistdb
