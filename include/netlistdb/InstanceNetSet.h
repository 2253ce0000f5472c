#pragma once

#include <netlistdb/Export.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace kvr::netlistdb {

class IVDBInstance;
class IVDBNet;

/// A net as seen in one instance: the key of every clock query.
using InstanceNet = std::pair<IVDBInstance *, IVDBNet *>;

/// An ordered set of (instance, net) pairs: by instance address, then by net address.
///
/// A bitmap over the address range in which an instance's nets lie, so that a pair costs two to four bytes where nets
/// were allocated side by side. Neither instances nor nets are owned or looked into, so that any pointer value will do.
/// Adding, removing and finding a pair takes time logarithmic in the size of the set.
class NETLISTDB_EXPORT InstanceNetSet {
  public:
    using value_type = InstanceNet; ///< a pair
    using size_type = std::size_t;  ///< a number of pairs

    /// Steps through the pairs in ascending order; a step takes logarithmic time. Pairs may be added and removed
    /// meanwhile: a step leads to the next pair above the current one. Valid as long as the set.
    class NETLISTDB_EXPORT const_iterator {
      public:
        using iterator_category = std::input_iterator_tag; ///< the pair lies in the iterator
        using value_type = InstanceNet;                    ///< a pair
        using difference_type = std::ptrdiff_t;            ///< never computed
        using pointer = const InstanceNet *;               ///< into the iterator
        using reference = const InstanceNet &;             ///< into the iterator

        /// The end of any set.
        const_iterator() = default;
        /// The pair, which the iterator holds.
        reference operator*() const { return m_pair; }
        /// The same.
        pointer operator->() const { return &m_pair; }
        /// Steps to the next pair, or to the end.
        const_iterator &operator++();
        /// Steps on; returns the position before.
        const_iterator operator++(int);
        /// Whether both are at the same pair of the same set, or both at the end.
        friend bool operator==(const const_iterator &a, const const_iterator &b)
        {
            return a.m_set == b.m_set && (a.m_set == nullptr || a.m_pair == b.m_pair);
        }
        /// The opposite.
        friend bool operator!=(const const_iterator &a, const const_iterator &b) { return !(a == b); }

      private:
        friend class InstanceNetSet;
        const InstanceNetSet *m_set = nullptr; ///< null at the end
        InstanceNet m_pair;
    };
    using iterator = const_iterator; ///< pairs cannot be changed in place

    /// Adds @p pair; returns whether it was new.
    bool insert(const value_type &pair);
    /// Removes @p pair; returns whether it was there.
    bool erase(const value_type &pair);
    /// Removes every pair of @p instance.
    void eraseInstance(IVDBInstance *instance);
    /// Whether @p pair is in the set.
    bool contains(const value_type &pair) const;
    /// 1 when @p pair is in the set, otherwise 0.
    size_type count(const value_type &pair) const { return contains(pair) ? 1 : 0; }
    /// Position of @p pair, or end().
    const_iterator find(const value_type &pair) const;
    /// Position of the first pair. Logarithmic time.
    const_iterator begin() const;
    /// Position behind the last pair.
    const_iterator end() const { return {}; }
    /// Number of pairs. Constant time.
    size_type size() const { return m_size; }
    /// Whether there is no pair. Constant time.
    bool empty() const { return m_size == 0; }
    /// All pairs in ascending order, a new list. Time and memory in proportion to it.
    std::vector<value_type> pairs() const { return {begin(), end()}; }

  private:
    static constexpr unsigned PAGE_BITS = 12; ///< 4 KiB of addresses
    /// One bit for each multiple of 8.
    using Page = std::array<std::uint64_t, 8>;

    /// The nets of one instance, as addresses.
    class Nets {
      public:
        bool insert(std::uintptr_t address);
        bool erase(std::uintptr_t address);
        bool contains(std::uintptr_t address) const;
        std::size_t count() const;
        /// Moves @p address on to the first one at or above it; false when there is none.
        bool atOrAbove(std::uintptr_t &address) const;

      private:
        bool alignedAtOrAbove(std::uintptr_t &address) const;

        std::map<std::uintptr_t, Page> m_pages; ///< by address / 4 KiB
        std::set<std::uintptr_t> m_others;      ///< addresses that are no multiple of 8
    };

    /// Moves @p position on to the first pair whose instance is at or above @p from and, for that very instance, whose
    /// net is at or above @p net.
    void settle(const_iterator &position, std::map<IVDBInstance *, Nets>::const_iterator from,
                std::uintptr_t net) const;

    std::map<IVDBInstance *, Nets> m_nets;
    std::size_t m_size = 0;
};

} // namespace kvr::netlistdb
