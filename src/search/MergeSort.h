#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace kvr::netlistdb {

/// Sorts @p items, equal ones in the order in which they stood. Unlike std::sort it stays within bounds and ends
/// whatever @p less answers: names come from outside, and their comparison asks the C library's locale.
template <typename Item, typename Less> void mergeSort(std::vector<Item> &items, Less less)
{
    const std::size_t count = items.size();
    std::vector<Item> merged(count);
    for (std::size_t width = 1; width < count; width *= 2) {
        for (std::size_t begin = 0; begin < count; begin += 2 * width) {
            const std::size_t middle = std::min(begin + width, count);
            const std::size_t end = std::min(middle + width, count);
            std::size_t left = begin;
            std::size_t right = middle;
            std::size_t out = begin;
            // Two runs in order already, as in lists that come sorted, are copied without a look at their items.
            if (middle < end && less(items[middle], items[middle - 1])) {
                while (left < middle && right < end) {
                    merged[out++] = less(items[right], items[left]) ? items[right++] : items[left++];
                }
            }
            while (left < middle) {
                merged[out++] = items[left++];
            }
            while (right < end) {
                merged[out++] = items[right++];
            }
        }
        items.swap(merged);
    }
}

} // namespace kvr::netlistdb
