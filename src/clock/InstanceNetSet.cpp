#include <netlistdb/InstanceNetSet.h>

#include <algorithm>

namespace kvr::netlistdb {

namespace {

std::uintptr_t addressOf(const IVDBNet *net)
{
    return reinterpret_cast<std::uintptr_t>(net);
}

/// Place of a net in its page: nets are at least 8-byte aligned.
struct Bit {
    Bit(std::uintptr_t address, unsigned pageBits)
        : page(address >> pageBits), word((address >> 9) & 7), mask(std::uint64_t{1} << ((address >> 3) & 63))
    {
    }
    std::uintptr_t page;
    std::size_t word;
    std::uint64_t mask;
};

} // namespace

bool InstanceNetSet::insert(const value_type &pair)
{
    const Bit bit(addressOf(pair.second), PAGE_BITS);
    std::uint64_t &word = m_nets[pair.first][bit.page][bit.word];
    if ((word & bit.mask) != 0) {
        return false;
    }
    word |= bit.mask;
    ++m_size;
    return true;
}

bool InstanceNetSet::erase(const value_type &pair)
{
    const auto nets = m_nets.find(pair.first);
    if (nets == m_nets.end()) {
        return false;
    }
    const Bit bit(addressOf(pair.second), PAGE_BITS);
    const auto page = nets->second.find(bit.page);
    if (page == nets->second.end() || (page->second[bit.word] & bit.mask) == 0) {
        return false;
    }
    page->second[bit.word] &= ~bit.mask;
    --m_size;
    return true;
}

bool InstanceNetSet::contains(const value_type &pair) const
{
    const auto nets = m_nets.find(pair.first);
    if (nets == m_nets.end()) {
        return false;
    }
    const Bit bit(addressOf(pair.second), PAGE_BITS);
    const auto page = nets->second.find(bit.page);
    return page != nets->second.end() && (page->second[bit.word] & bit.mask) != 0;
}

std::vector<InstanceNetSet::value_type> InstanceNetSet::pairs() const
{
    std::vector<value_type> all;
    all.reserve(m_size);
    std::vector<std::uintptr_t> order;
    for (const auto &[instance, pages] : m_nets) {
        order.clear();
        for (const auto &page : pages) {
            order.push_back(page.first);
        }
        std::sort(order.begin(), order.end());
        for (const std::uintptr_t number : order) {
            const Page &page = pages.at(number);
            for (std::uintptr_t bit = 0; bit < 512; ++bit) {
                if ((page[bit >> 6] >> (bit & 63) & 1) != 0) {
                    const std::uintptr_t address = (number << PAGE_BITS) + (bit << 3);
                    all.emplace_back(instance, reinterpret_cast<IVDBNet *>(address));
                }
            }
        }
    }
    return all;
}

} // namespace kvr::netlistdb
