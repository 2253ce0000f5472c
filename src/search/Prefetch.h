#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kvr::netlistdb {

/// Asks for the memory of an item a few places ahead in a list that is walked: items lie scattered, and waiting for
/// each in turn is most of the cost of a walk over millions of them.
template <typename Item> void prefetchAhead(const std::vector<Item *> &list, std::size_t position)
{
#if defined(__GNUC__)
    constexpr std::size_t distance = 8;
    constexpr std::size_t cacheLine = 64;
    if (position + distance < list.size()) {
        // As a number: the list may hold a null pointer, to which nothing may be added.
        const auto item = reinterpret_cast<std::uintptr_t>(list[position + distance]);
        __builtin_prefetch(reinterpret_cast<const void *>(item));
        __builtin_prefetch(reinterpret_cast<const void *>(item + cacheLine));
    }
#else
    (void)list;
    (void)position;
#endif
}

} // namespace kvr::netlistdb
