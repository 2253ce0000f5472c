#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace kvr::netlistdb {

/// The address of @p object as a key or value of an AddressMap.
inline std::uintptr_t addressOf(const void *object)
{
    return reinterpret_cast<std::uintptr_t>(object);
}

/// Ordered map from address to address, made for tens of millions of objects that lie close together.
///
/// The address space is cut into pages of 8 KiB. A page in use holds its entries side by side, ordered by their offset:
/// ten bytes an entry. A small hash table leads to the page, so that a look-up meets two or three cache lines however
/// many entries there are, and ascending addresses are appended in constant time. Any 64-bit key is good, aligned or
/// not.
class AddressMap {
  public:
    using Address = std::uintptr_t;

    /// Adds @p key with @p value; returns false and changes nothing when the key is there.
    bool insertIfAbsent(Address key, Address value);
    /// Pointer to the value of @p key, or null. Valid until the map changes; the value may be overwritten.
    Address *find(Address key);
    const Address *find(Address key) const { return const_cast<AddressMap *>(this)->find(key); }
    /// Removes @p key; returns false when it was not there.
    bool erase(Address key);
    /// Removes everything and frees the storage.
    void clear();

    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }

    /// Calls @p visit(key, value) for every entry in ascending order of key; @p value may be overwritten, entries may
    /// not be added or removed.
    template <typename Visit> void forEach(Visit visit)
    {
        for (Page *page : pagesInOrder()) {
            for (std::uint32_t at = 0; at < page->count; ++at) {
                visit((page->number << PAGE_BITS) | page->offsets()[at], page->values()[at]);
            }
        }
    }

    /// Removes every entry for which @p drop(key, value) is true.
    template <typename Drop> void eraseIf(Drop drop)
    {
        for (Page *page : pagesInOrder()) {
            std::uint32_t kept = 0;
            for (std::uint32_t at = 0; at < page->count; ++at) {
                if (!drop((page->number << PAGE_BITS) | page->offsets()[at], page->values()[at])) {
                    page->offsets()[kept] = page->offsets()[at];
                    page->values()[kept] = page->values()[at];
                    ++kept;
                }
            }
            m_size -= page->count - kept;
            page->count = kept;
        }
    }

  private:
    static constexpr unsigned PAGE_BITS = 13;

    /// A place in the hash table; free without a block. A page that lost its entries stays until the table grows.
    struct Page {
        Address number = 0;
        std::unique_ptr<std::byte[]> block; ///< room for the values, then for the offsets
        std::uint32_t count = 0;
        std::uint32_t room = 0;

        Address *values() const { return reinterpret_cast<Address *>(block.get()); }
        std::uint16_t *offsets() const
        {
            return reinterpret_cast<std::uint16_t *>(block.get() + room * sizeof(Address));
        }
        void resize(std::uint32_t newRoom);
        /// First place whose offset is not below @p offset.
        std::uint32_t lowerBound(std::uint16_t offset) const;
    };

    std::size_t slotOf(Address number) const;
    Page *findPage(Address number);
    Page &freePlace(Address number);
    Page &makePage(Address number);
    void growDirectory();
    std::vector<Page *> pagesInOrder();

    std::vector<Page> m_directory; ///< open addressing; a power of two, at most 3/4 in use
    std::size_t m_pages = 0;       ///< places taken
    std::size_t m_size = 0;
    Address m_newestPage = 0; ///< still growing; the others are cut to size
};

} // namespace kvr::netlistdb
