#include "clock/VisitedPairs.h"

#include "clock/InstanceNetHash.h"

#include <algorithm>

namespace kvr::netlistdb {

bool VisitedPairs::insert(const InstanceNet &pair)
{
    if (contains(pair)) {
        return false;
    }
    m_pairs.push_back(pair);
    if (m_pairs.size() <= FEW) {
        return true;
    }
    if (m_pairs.size() * 2 > m_buckets.size()) {
        rebuild();
    } else {
        m_buckets[bucketOf(pair)] = static_cast<std::uint32_t>(m_pairs.size());
    }
    return true;
}

bool VisitedPairs::containsAmongFirst(std::size_t count, const InstanceNet &pair) const
{
    if (m_buckets.empty()) {
        const auto end = m_pairs.begin() + static_cast<std::ptrdiff_t>(count);
        return std::find(m_pairs.begin(), end, pair) != end;
    }
    const std::uint32_t place = m_buckets[bucketOf(pair)];
    return place != 0 && place <= count;
}

void VisitedPairs::clear()
{
    if (m_pairs.capacity() > KEPT) {
        m_pairs = {};
        m_buckets = {};
        return;
    }
    m_pairs.clear();
    m_buckets.clear();
}

/// The bucket that holds @p pair, or the free one where it belongs.
std::size_t VisitedPairs::bucketOf(const InstanceNet &pair) const
{
    const std::size_t mask = m_buckets.size() - 1;
    std::size_t at = InstanceNetHash()(pair) & mask;
    while (m_buckets[at] != 0 && m_pairs[m_buckets[at] - 1] != pair) {
        at = (at + 1) & mask;
    }
    return at;
}

void VisitedPairs::rebuild()
{
    std::size_t size = 64;
    while (size < m_pairs.size() * 4) {
        size *= 2;
    }
    m_buckets.assign(size, 0);
    for (std::size_t i = 0; i < m_pairs.size(); ++i) {
        m_buckets[bucketOf(m_pairs[i])] = static_cast<std::uint32_t>(i + 1);
    }
}

} // namespace kvr::netlistdb
