#pragma once

#include "analysis/Lists.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis {

/// From the address of each of a list of objects to its place in the list.
///
/// Open addressing, four bytes a place. Objects that lie within one KiB stand in one cache line of the table where they
/// can: neighbours in memory are mostly asked for one after the other.
class PointerIndex {
  public:
    /// Makes room for @p count objects, with at least half as many places more; with @p spacious more than that, for a
    /// table that is asked often and not kept. Everything that was added before is forgotten.
    void reset(std::size_t count, bool spacious = false)
    {
        std::size_t places = 16;
        while (places < count * (spacious ? 2 : 1) + count / 2) {
            places *= 2;
        }
        m_places.assign(places, NONE);
    }

    /// Adds the object at @p place of @p objects unless its address is there already.
    template <typename Pointer> void add(const std::vector<Pointer> &objects, std::uint32_t place)
    {
        std::size_t at = start(objects[place]);
        while (m_places[at] != NONE) {
            if (objects[m_places[at]] == objects[place]) {
                return;
            }
            at = (at + 1) & (m_places.size() - 1);
        }
        m_places[at] = place;
    }

    /// Place of @p object in @p objects, or NONE.
    template <typename Pointer> std::uint32_t find(const std::vector<Pointer> &objects, const void *object) const
    {
        if (m_places.empty()) {
            return NONE;
        }
        std::size_t at = start(object);
        while (m_places[at] != NONE && objects[m_places[at]] != object) {
            at = (at + 1) & (m_places.size() - 1);
        }
        return m_places[at];
    }

    std::size_t memory() const { return m_places.capacity() * sizeof(std::uint32_t); }

  private:
    std::size_t start(const void *object) const
    {
        const auto address = reinterpret_cast<std::uintptr_t>(object);
        const std::uint64_t neighbourhood = (address >> 10) * 0x9E3779B97F4A7C15U;
        return static_cast<std::size_t>(neighbourhood >> 28 << 4 | (address >> 6 & 15)) & (m_places.size() - 1);
    }

    std::vector<std::uint32_t> m_places;
};

} // namespace kvr::netlistdb::analysis
