#include "netlist/AddressMap.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kvr::netlistdb {

namespace {

constexpr std::size_t FIRST_DIRECTORY = 8;
constexpr std::uint32_t FIRST_ROOM = 4;

} // namespace

void AddressMap::Page::resize(std::uint32_t newRoom)
{
    std::unique_ptr<std::byte[]> fresh(new std::byte[newRoom * (sizeof(Address) + sizeof(std::uint16_t))]);
    if (count != 0) {
        std::memcpy(fresh.get(), values(), count * sizeof(Address));
        std::memcpy(fresh.get() + newRoom * sizeof(Address), offsets(), count * sizeof(std::uint16_t));
    }
    block = std::move(fresh);
    room = newRoom;
}

std::uint32_t AddressMap::Page::lowerBound(std::uint16_t offset) const
{
    const std::uint16_t *const first = offsets();
    if (count == 0 || first[count - 1] < offset) {
        return count;
    }
    return static_cast<std::uint32_t>(std::lower_bound(first, first + count, offset) - first);
}

std::size_t AddressMap::slotOf(Address number) const
{
    // The high half of the product is well mixed; neighbouring pages spread over the table.
    return static_cast<std::size_t>((number * 0x9E3779B97F4A7C15u) >> 32) & (m_directory.size() - 1);
}

AddressMap::Page *AddressMap::findPage(Address number)
{
    if (m_directory.empty()) {
        return nullptr;
    }
    for (std::size_t slot = slotOf(number);; slot = (slot + 1) & (m_directory.size() - 1)) {
        Page &page = m_directory[slot];
        if (page.block == nullptr) {
            return nullptr;
        }
        if (page.number == number) {
            return &page;
        }
    }
}

AddressMap::Page &AddressMap::freePlace(Address number)
{
    std::size_t slot = slotOf(number);
    while (m_directory[slot].block != nullptr) {
        slot = (slot + 1) & (m_directory.size() - 1);
    }
    return m_directory[slot];
}

void AddressMap::growDirectory()
{
    std::size_t inUse = 0;
    for (const Page &page : m_directory) {
        inUse += page.count != 0;
    }
    std::size_t places = FIRST_DIRECTORY;
    while (places < inUse * 2) {
        places *= 2;
    }
    std::vector<Page> old(places);
    old.swap(m_directory);
    for (Page &page : old) {
        if (page.count != 0) {
            freePlace(page.number) = std::move(page);
        }
    }
    m_pages = inUse;
}

AddressMap::Page &AddressMap::makePage(Address number)
{
    if ((m_pages + 1) * 4 > m_directory.size() * 3) {
        growDirectory();
    }
    // Objects are mostly made at ascending addresses: when a page is begun, the one begun before it is full.
    if (Page *newest = m_pages != 0 ? findPage(m_newestPage) : nullptr;
        newest != nullptr && newest->count != 0 && newest->count < newest->room) {
        newest->resize(newest->count);
    }
    Page &page = freePlace(number);
    page.resize(FIRST_ROOM);
    page.number = number;
    m_newestPage = number;
    ++m_pages;
    return page;
}

bool AddressMap::insertIfAbsent(Address key, Address value)
{
    const Address number = key >> PAGE_BITS;
    const auto offset = static_cast<std::uint16_t>(key & ((Address{1} << PAGE_BITS) - 1));
    Page *page = findPage(number);
    if (page == nullptr) {
        page = &makePage(number);
    }
    const std::uint32_t at = page->lowerBound(offset);
    if (at < page->count && page->offsets()[at] == offset) {
        return false;
    }
    if (page->count == page->room) {
        page->resize(page->room + std::max(FIRST_ROOM, page->room / 2));
    }
    Address *const values = page->values();
    std::uint16_t *const offsets = page->offsets();
    const std::size_t behind = page->count - at;
    std::memmove(values + at + 1, values + at, behind * sizeof(Address));
    std::memmove(offsets + at + 1, offsets + at, behind * sizeof(std::uint16_t));
    values[at] = value;
    offsets[at] = offset;
    ++page->count;
    ++m_size;
    return true;
}

AddressMap::Address *AddressMap::find(Address key)
{
    Page *page = findPage(key >> PAGE_BITS);
    if (page == nullptr) {
        return nullptr;
    }
    const auto offset = static_cast<std::uint16_t>(key & ((Address{1} << PAGE_BITS) - 1));
    const std::uint32_t at = page->lowerBound(offset);
    return at < page->count && page->offsets()[at] == offset ? page->values() + at : nullptr;
}

bool AddressMap::erase(Address key)
{
    Page *page = findPage(key >> PAGE_BITS);
    if (page == nullptr) {
        return false;
    }
    const auto offset = static_cast<std::uint16_t>(key & ((Address{1} << PAGE_BITS) - 1));
    const std::uint32_t at = page->lowerBound(offset);
    if (at == page->count || page->offsets()[at] != offset) {
        return false;
    }
    Address *const values = page->values();
    std::uint16_t *const offsets = page->offsets();
    const std::size_t behind = page->count - at - 1;
    std::memmove(values + at, values + at + 1, behind * sizeof(Address));
    std::memmove(offsets + at, offsets + at + 1, behind * sizeof(std::uint16_t));
    --page->count;
    --m_size;
    return true;
}

void AddressMap::clear()
{
    std::vector<Page>().swap(m_directory);
    m_pages = 0;
    m_size = 0;
    m_newestPage = 0;
}

std::vector<AddressMap::Page *> AddressMap::pagesInOrder()
{
    std::vector<Page *> pages;
    pages.reserve(m_pages);
    for (Page &page : m_directory) {
        if (page.block != nullptr) {
            pages.push_back(&page);
        }
    }
    std::sort(pages.begin(), pages.end(), [](const Page *a, const Page *b) { return a->number < b->number; });
    return pages;
}

} // namespace kvr::netlistdb
