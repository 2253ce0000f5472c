#pragma once

#include <netlistdb/InstanceNetSet.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kvr::netlistdb {

/// The (instance, net) pairs met by one query, in the order in which they were met.
///
/// Most queries meet a handful of pairs, some meet millions: few pairs are looked up by walking them, more through a
/// hash table that is dropped, not wiped, between queries.
class VisitedPairs {
  public:
    /// Adds @p pair; returns whether it was new.
    bool insert(const InstanceNet &pair);
    bool contains(const InstanceNet &pair) const { return containsAmongFirst(m_pairs.size(), pair); }
    /// Whether @p pair is one of the @p count pairs added first.
    bool containsAmongFirst(std::size_t count, const InstanceNet &pair) const;
    std::size_t size() const { return m_pairs.size(); }
    bool empty() const { return m_pairs.empty(); }
    void clear();

    std::vector<InstanceNet>::const_iterator begin() const { return m_pairs.begin(); }
    std::vector<InstanceNet>::const_iterator end() const { return m_pairs.end(); }

  private:
    static constexpr std::size_t FEW = 12;
    static constexpr std::size_t KEPT = 4096; ///< storage that is kept between queries, in pairs

    std::size_t bucketOf(const InstanceNet &pair) const;
    void rebuild();

    std::vector<InstanceNet> m_pairs;
    std::vector<std::uint32_t> m_buckets; ///< index into m_pairs plus one; empty while there are few pairs
};

} // namespace kvr::netlistdb
