#include "clock/VisitedPairs.h"

#include <algorithm>

namespace kvr::netlistdb {

bool VisitedPairs::insert(const InstanceNet &pair)
{
    if (contains(pair)) {
        return false;
    }
    m_pairs.push_back(pair);
    if (!m_table.empty()) {
        m_table.insert(pair);
    } else if (m_pairs.size() > FEW) {
        m_table.insert(m_pairs.begin(), m_pairs.end());
    }
    return true;
}

bool VisitedPairs::contains(const InstanceNet &pair) const
{
    return m_table.empty() ? std::find(m_pairs.begin(), m_pairs.end(), pair) != m_pairs.end()
                           : m_table.count(pair) != 0;
}

void VisitedPairs::clear()
{
    if (!m_table.empty()) {
        m_table = {}; // to empty it would take time in proportion to the largest query before
    }
    if (m_pairs.capacity() > KEPT) {
        m_pairs = {};
    }
    m_pairs.clear();
}

} // namespace kvr::netlistdb
