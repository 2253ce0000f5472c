#pragma once

#include "SlabAllocator.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

namespace Verific {

/// Bounds and bits of a bus. The storage ends at the last bit that is set, so wide bounds alone cost nothing.
template <typename Bit> class BusElements {
  public:
    using Bits = std::vector<Bit *, SlabAllocator<Bit *>>;

    BusElements(int left, int right) : m_left(left), m_right(right) {}

    int left() const { return m_left; }
    int right() const { return m_right; }
    /// Number of bits in the bounds, at most UINT_MAX.
    unsigned size() const
    {
        const std::uint64_t size = width();
        return size > UINT_MAX ? UINT_MAX : static_cast<unsigned>(size);
    }

    /// The bit at @p index, or null where unset or out of bounds.
    Bit *at(int index) const
    {
        const std::uint64_t offset = offsetOf(index);
        return offset < m_bits.size() ? m_bits[offset] : nullptr;
    }

    /// Distance of @p index from the left bound; at least width() when out of bounds.
    std::uint64_t offsetOf(int index) const
    {
        const std::int64_t from = m_left;
        const std::int64_t offset = m_left <= m_right ? index - from : from - index;
        return offset < 0 ? UINT64_MAX : static_cast<std::uint64_t>(offset);
    }
    std::uint64_t width() const { return offsetOf(m_right) + 1; }

    /// Places counted from the left bound; ends after the last bit that is set.
    const Bits &bits() const { return m_bits; }
    Bits &bits() { return m_bits; }

    void put(std::uint64_t offset, Bit *bit)
    {
        if (offset >= m_bits.size()) {
            m_bits.resize(offset + 1);
        }
        m_bits[offset] = bit;
        trim();
    }

    /// Empties the place of @p bit, which is in the bus. @p before tells how many bits were made between it and the bit
    /// in the last place: most buses are made in order, and then its place follows from that.
    void remove(const Bit *bit, std::int64_t before)
    {
        const std::int64_t last = static_cast<std::int64_t>(m_bits.size()) - 1;
        for (const std::int64_t likely : {last - before, last + before}) {
            if (likely >= 0 && likely <= last && m_bits[static_cast<std::size_t>(likely)] == bit) {
                m_bits[static_cast<std::size_t>(likely)] = nullptr;
                trim();
                return;
            }
        }
        const auto found = std::find(m_bits.begin(), m_bits.end(), bit);
        if (found != m_bits.end()) {
            *found = nullptr;
            trim();
        }
    }

    /// Steps a loop over the set bits.
    template <typename Iter> bool next(Iter &iter, Bit *&bit) const
    {
        for (unsigned at = iter.position(); at < m_bits.size(); ++at) {
            if (m_bits[at] != nullptr) {
                bit = m_bits[at];
                iter.setPosition(at + 1);
                return true;
            }
        }
        bit = nullptr;
        return false;
    }

    /// Drops the places after the last set bit.
    void trim()
    {
        while (!m_bits.empty() && m_bits.back() == nullptr) {
            m_bits.pop_back();
        }
    }

  private:
    Bits m_bits;
    int m_left;
    int m_right;
};

} // namespace Verific
