#pragma once

#include <netlistdb/Export.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kvr::netlistdb {

class IVDBInstance;
class IVDBNet;

/// An ordered set of (instance, net) pairs: by instance address, then by net address.
///
/// Holds one bit per 8 bytes of the address range in which an instance's nets lie, so that a pair costs about two bytes
/// where nets were allocated side by side. Neither instances nor nets are owned or looked into; either may be null, and
/// the address of a net is a multiple of 8. Adding, removing and finding a pair takes time logarithmic in the number of
/// instances, however many nets there are.
class NETLISTDB_EXPORT InstanceNetSet {
  public:
    /// A net as seen in one instance.
    using value_type = std::pair<IVDBInstance *, IVDBNet *>;

    /// Adds @p pair; answers whether it was new.
    bool insert(const value_type &pair);
    /// Removes @p pair; answers whether it was there.
    bool erase(const value_type &pair);
    /// Whether @p pair is in the set.
    bool contains(const value_type &pair) const;
    /// Number of pairs. Constant time.
    std::size_t size() const { return m_size; }
    /// Whether there is no pair. Constant time.
    bool empty() const { return m_size == 0; }
    /// All pairs in ascending order, a new list. Time and memory in proportion to it.
    std::vector<value_type> pairs() const;

  private:
    static constexpr unsigned PAGE_BITS = 12; ///< 4 KiB of addresses: one cache line of bits
    using Page = std::array<std::uint64_t, 8>;
    using Pages = std::unordered_map<std::uintptr_t, Page>;

    std::map<IVDBInstance *, Pages> m_nets;
    std::size_t m_size = 0;
};

} // namespace kvr::netlistdb
