#pragma once

#include "analysis/Lists.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis {

/// From the address of each of a list of objects to its place in the list.
///
/// Memory is looked at in pages of 256 addresses at which objects may begin, given what their addresses have in common.
/// A page keeps a bitmap of where objects do begin; the number of bits below that of an object (its rank) leads to its
/// place. Six to nine bytes an object where objects lie close together.
class PointerIndex {
  public:
    /// Indexes @p objects in place of what was indexed before. Of an object that occurs several times the first place
    /// counts; null pointers are left out.
    template <typename Object> void build(const std::vector<Object *> &objects)
    {
        clear();
        std::uintptr_t anyBits = 0;
        for (const Object *object : objects) {
            anyBits |= addressOf(object);
        }
        for (m_shift = 0; m_shift < MOST_SHIFT && (anyBits >> m_shift & 1) == 0;) {
            ++m_shift;
        }
        for (const Object *object : objects) {
            if (object != nullptr) {
                mark(addressOf(object));
            }
        }
        m_places.assign(rankPages(), NONE);
        for (std::size_t place = 0; place < objects.size(); ++place) {
            const std::uint32_t rank = objects[place] != nullptr ? rankOf(addressOf(objects[place])) : NONE;
            if (rank != NONE && m_places[rank] == NONE) {
                m_places[rank] = static_cast<std::uint32_t>(place);
            }
        }
    }

    /// Place of @p object, or NONE.
    std::uint32_t find(const void *object) const
    {
        const std::uint32_t rank = rankOf(addressOf(object));
        return rank != NONE ? m_places[rank] : NONE;
    }

    /// Calls @p found with the number of each of @p wanted and its place. Most of a look-up in a large index is waiting
    /// for memory: here many wait at once.
    template <typename Object, typename Found> void findAll(const std::vector<Object *> &wanted, Found found) const
    {
        constexpr std::size_t BATCH = 64;
        std::array<std::uint32_t, BATCH> at{};
        for (std::size_t first = 0; first < wanted.size(); first += BATCH) {
            const std::size_t count = wanted.size() - first < BATCH ? wanted.size() - first : BATCH;
            for (std::size_t i = 0; i < count; ++i) {
                at[i] = pageOf(addressOf(wanted[first + i]));
                prefetch(m_pages.data() + (at[i] != NONE ? at[i] : 0));
            }
            for (std::size_t i = 0; i < count; ++i) {
                at[i] = rankIn(at[i], addressOf(wanted[first + i]));
                prefetch(m_places.data() + (at[i] != NONE ? at[i] : 0));
            }
            for (std::size_t i = 0; i < count; ++i) {
                found(first + i, at[i] != NONE ? m_places[at[i]] : NONE);
            }
        }
    }

    std::size_t memory() const
    {
        return m_slots.capacity() * sizeof(std::uint32_t) + m_pages.capacity() * sizeof(Page) +
               m_places.capacity() * sizeof(std::uint32_t);
    }

  private:
    static constexpr unsigned WORDS = 4;
    static constexpr unsigned BITS = 64;
    static constexpr unsigned MOST_SHIFT = 6;

    struct Page {
        std::uintptr_t number;
        std::uint32_t rank; ///< objects in the pages before
        std::array<std::uint64_t, WORDS> begins;
    };

    static std::uintptr_t addressOf(const void *object) { return reinterpret_cast<std::uintptr_t>(object); }
    static std::uint32_t countBits(std::uint64_t word)
    {
        word -= word >> 1 & 0x5555555555555555U;
        word = (word & 0x3333333333333333U) + (word >> 2 & 0x3333333333333333U);
        word = (word + (word >> 4)) & 0x0F0F0F0F0F0F0F0FU;
        return static_cast<std::uint32_t>(word * 0x0101010101010101U >> 56);
    }
    static void prefetch(const void *memory)
    {
#if defined(__GNUC__)
        __builtin_prefetch(memory);
#else
        (void)memory;
#endif
    }

    std::uintptr_t pageNumberOf(std::uintptr_t address) const
    {
        return address >> m_shift >> 8;
    }
    std::size_t bitOf(std::uintptr_t address) const
    {
        return address >> m_shift & (WORDS * BITS - 1);
    }
    std::size_t slotOf(std::uintptr_t page) const
    {
        return static_cast<std::size_t>(std::uint64_t{page} * 0x9E3779B97F4A7C15U >> 32) & (m_slots.size() - 1);
    }
    /// Place in m_pages of the page that holds @p address, or NONE.
    std::uint32_t pageOf(std::uintptr_t address) const
    {
        if (m_slots.empty()) {
            return NONE;
        }
        const std::uintptr_t number = pageNumberOf(address);
        std::size_t slot = slotOf(number);
        while (m_slots[slot] != NONE && m_pages[m_slots[slot]].number != number) {
            slot = (slot + 1) & (m_slots.size() - 1);
        }
        return m_slots[slot];
    }
    /// Number of the objects below @p address when one begins there, otherwise NONE.
    std::uint32_t rankIn(std::uint32_t page, std::uintptr_t address) const
    {
        const std::size_t bit = bitOf(address);
        if (page == NONE || address >> m_shift << m_shift != address ||
            (m_pages[page].begins[bit / BITS] >> bit % BITS & 1) == 0) {
            return NONE;
        }
        std::uint32_t rank = m_pages[page].rank;
        for (std::size_t word = 0; word < bit / BITS; ++word) {
            rank += countBits(m_pages[page].begins[word]);
        }
        return rank + countBits(m_pages[page].begins[bit / BITS] & ((std::uint64_t{1} << bit % BITS) - 1));
    }
    std::uint32_t rankOf(std::uintptr_t address) const
    {
        return rankIn(pageOf(address), address);
    }

    void clear()
    {
        m_pages.clear();
        m_slots.assign(16, NONE);
    }
    void mark(std::uintptr_t address)
    {
        // Objects that were made one after the other mostly lie in one page.
        if (m_pages.empty() || m_pages[m_latest].number != pageNumberOf(address)) {
            m_latest = pageOf(address);
            if (m_latest == NONE) {
                m_latest = addPage(pageNumberOf(address));
            }
        }
        m_pages[m_latest].begins[bitOf(address) / BITS] |= std::uint64_t{1} << bitOf(address) % BITS;
    }
    std::uint32_t addPage(std::uintptr_t number)
    {
        const auto page = static_cast<std::uint32_t>(m_pages.size());
        m_pages.push_back({number, 0, {}});
        if (m_pages.size() * 2 > m_slots.size()) {
            m_slots.assign(m_slots.size() * 2, NONE);
            for (std::uint32_t known = 0; known < page; ++known) {
                enter(known);
            }
        }
        enter(page);
        return page;
    }
    void enter(std::uint32_t page)
    {
        std::size_t slot = slotOf(m_pages[page].number);
        while (m_slots[slot] != NONE) {
            slot = (slot + 1) & (m_slots.size() - 1);
        }
        m_slots[slot] = page;
    }
    /// Counts the objects page by page; returns the number of all.
    std::size_t rankPages()
    {
        m_pages.shrink_to_fit();
        std::uint32_t rank = 0;
        for (Page &page : m_pages) {
            page.rank = rank;
            for (const std::uint64_t word : page.begins) {
                rank += countBits(word);
            }
        }
        return rank;
    }

    std::vector<std::uint32_t> m_slots; ///< of a hash table: places in m_pages; a power of two, half of them free
    std::vector<Page> m_pages;
    std::vector<std::uint32_t> m_places; ///< by rank
    std::uint32_t m_latest = 0;          ///< page of the latest mark
    unsigned m_shift = 0;                ///< low bits that are 0 in every address
};

} // namespace kvr::netlistdb::analysis
