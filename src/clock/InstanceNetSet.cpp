#include <netlistdb/InstanceNetSet.h>

#include "netlist/AddressMap.h"

#include <algorithm>
#include <limits>

namespace kvr::netlistdb {

namespace {

constexpr std::uintptr_t ALIGNMENT = 8;

bool isAligned(std::uintptr_t address)
{
    return address % ALIGNMENT == 0;
}

std::size_t wordOf(std::uintptr_t address)
{
    return (address >> 9) & 7;
}

std::uint64_t maskOf(std::uintptr_t address)
{
    return std::uint64_t{1} << ((address >> 3) & 63);
}

std::size_t lowestBit(std::uint64_t word)
{
    std::size_t bit = 0;
    for (unsigned step = 32; step != 0; step /= 2) {
        if ((word & ((std::uint64_t{1} << step) - 1)) == 0) {
            word >>= step;
            bit += step;
        }
    }
    return bit;
}

} // namespace

bool InstanceNetSet::Nets::insert(std::uintptr_t address)
{
    if (!isAligned(address)) {
        return m_others.insert(address).second;
    }
    std::uint64_t &word = m_pages[address >> PAGE_BITS][wordOf(address)];
    const bool isNew = (word & maskOf(address)) == 0;
    word |= maskOf(address);
    return isNew;
}

bool InstanceNetSet::Nets::erase(std::uintptr_t address)
{
    if (!isAligned(address)) {
        return m_others.erase(address) != 0;
    }
    const auto page = m_pages.find(address >> PAGE_BITS);
    if (page == m_pages.end() || (page->second[wordOf(address)] & maskOf(address)) == 0) {
        return false;
    }
    page->second[wordOf(address)] &= ~maskOf(address);
    if (std::all_of(page->second.begin(), page->second.end(), [](std::uint64_t word) { return word == 0; })) {
        m_pages.erase(page);
    }
    return true;
}

bool InstanceNetSet::Nets::contains(std::uintptr_t address) const
{
    if (!isAligned(address)) {
        return m_others.count(address) != 0;
    }
    const auto page = m_pages.find(address >> PAGE_BITS);
    return page != m_pages.end() && (page->second[wordOf(address)] & maskOf(address)) != 0;
}

std::size_t InstanceNetSet::Nets::count() const
{
    std::size_t all = m_others.size();
    for (const auto &page : m_pages) {
        for (std::uint64_t word : page.second) {
            for (; word != 0; word &= word - 1) {
                ++all;
            }
        }
    }
    return all;
}

bool InstanceNetSet::Nets::alignedAtOrAbove(std::uintptr_t &address) const
{
    std::uintptr_t from = address;
    for (auto page = m_pages.lower_bound(from >> PAGE_BITS); page != m_pages.end(); ++page) {
        const std::uintptr_t base = page->first << PAGE_BITS;
        from = std::max(from, base);
        // The bits below the address do not count in the word where it lies.
        std::uint64_t below = maskOf(from) - 1;
        for (std::size_t word = wordOf(from); word < page->second.size(); ++word) {
            const std::uint64_t bits = page->second[word] & ~below;
            if (bits != 0) {
                address = base + ((word * 64 + lowestBit(bits)) * ALIGNMENT);
                return true;
            }
            below = 0;
        }
    }
    return false;
}

bool InstanceNetSet::Nets::atOrAbove(std::uintptr_t &address) const
{
    const auto other = m_others.lower_bound(address);
    std::uintptr_t aligned = address;
    if (!isAligned(aligned)) {
        aligned |= ALIGNMENT - 1;
        if (aligned == std::numeric_limits<std::uintptr_t>::max()) {
            if (other == m_others.end()) {
                return false;
            }
            address = *other;
            return true;
        }
        ++aligned;
    }
    const bool hasAligned = alignedAtOrAbove(aligned);
    if (other != m_others.end() && (!hasAligned || *other < aligned)) {
        address = *other;
        return true;
    }
    address = aligned;
    return hasAligned;
}

bool InstanceNetSet::insert(const value_type &pair)
{
    const bool isNew = m_nets[pair.first].insert(addressOf(pair.second));
    m_size += isNew;
    return isNew;
}

bool InstanceNetSet::erase(const value_type &pair)
{
    const auto nets = m_nets.find(pair.first);
    const bool wasThere = nets != m_nets.end() && nets->second.erase(addressOf(pair.second));
    m_size -= wasThere;
    return wasThere;
}

void InstanceNetSet::eraseInstance(IVDBInstance *instance)
{
    const auto nets = m_nets.find(instance);
    if (nets != m_nets.end()) {
        m_size -= nets->second.count();
        m_nets.erase(nets);
    }
}

bool InstanceNetSet::contains(const value_type &pair) const
{
    const auto nets = m_nets.find(pair.first);
    return nets != m_nets.end() && nets->second.contains(addressOf(pair.second));
}

InstanceNetSet::const_iterator InstanceNetSet::find(const value_type &pair) const
{
    const_iterator position;
    if (contains(pair)) {
        position.m_set = this;
        position.m_pair = pair;
    }
    return position;
}

InstanceNetSet::const_iterator InstanceNetSet::begin() const
{
    const_iterator position;
    settle(position, m_nets.begin(), 0);
    return position;
}

void InstanceNetSet::settle(const_iterator &position, std::map<IVDBInstance *, Nets>::const_iterator from,
                            std::uintptr_t net) const
{
    for (; from != m_nets.end(); ++from, net = 0) {
        if (from->second.atOrAbove(net)) {
            position.m_set = this;
            position.m_pair = {from->first, reinterpret_cast<IVDBNet *>(net)};
            return;
        }
    }
    position = const_iterator();
}

InstanceNetSet::const_iterator &InstanceNetSet::const_iterator::operator++()
{
    const std::uintptr_t net = addressOf(m_pair.second);
    auto instance = m_set->m_nets.lower_bound(m_pair.first);
    const bool isLast = net == std::numeric_limits<std::uintptr_t>::max();
    if (instance != m_set->m_nets.end() && instance->first == m_pair.first) {
        if (isLast) {
            m_set->settle(*this, ++instance, 0);
        } else {
            m_set->settle(*this, instance, net + 1);
        }
    } else {
        m_set->settle(*this, instance, 0);
    }
    return *this;
}

InstanceNetSet::const_iterator InstanceNetSet::const_iterator::operator++(int)
{
    const const_iterator before = *this;
    ++*this;
    return before;
}

} // namespace kvr::netlistdb
