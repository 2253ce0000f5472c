#include "database/BitNetGroups.h"

#include <algorithm>
#include <numeric>

namespace kvr::netlistdb {

void BitNetGroups::add(std::string_view name, BitSubscript subscript, const Verific::Net *net)
{
    const std::string_view baseName = name.substr(0, subscript.baseLength);
    const auto [found, isNew] = m_groups.try_emplace(baseName, static_cast<std::uint32_t>(m_baseNames.size()));
    if (isNew) {
        m_baseNames.push_back(baseName);
        m_counts.push_back(0);
    }
    m_entries.push_back({found->second, {subscript.index, net}});
    ++m_counts[found->second];
}

BitNetGroups::Layout BitNetGroups::sorted() const
{
    Layout layout;
    layout.order.resize(m_baseNames.size());
    std::iota(layout.order.begin(), layout.order.end(), 0u);
    std::sort(layout.order.begin(), layout.order.end(),
              [this](std::uint32_t a, std::uint32_t b) { return m_baseNames[a] < m_baseNames[b]; });

    layout.begins.resize(m_counts.size());
    std::exclusive_scan(m_counts.begin(), m_counts.end(), layout.begins.begin(), std::size_t{0});
    layout.bits.resize(m_entries.size());
    std::vector<std::size_t> next = layout.begins;
    for (const Entry &entry : m_entries) {
        layout.bits[next[entry.group]++] = entry.bit;
    }
    return layout;
}

void BitNetGroups::findBus(Group &group)
{
    const auto byIndex = [](const Bit &a, const Bit &b) { return a.index < b.index; };
    std::stable_sort(group.bits.begin(), group.bits.end(), byIndex);
    group.busWidth = 0;
    group.members = 0;
    if (group.bits.empty() || group.bits.front().index != 0) {
        return;
    }
    int last = 0;
    std::size_t count = 1;
    for (auto bit = group.bits.begin() + 1; bit != group.bits.end(); ++bit) {
        if (bit->index == last + 1) {
            ++last;
            ++count;
        }
    }
    if (last > 0) {
        group.busWidth = last + 1;
        // Counted, not chosen by index: repeated indices push the highest ones out of the bus.
        group.members = count;
    }
}

} // namespace kvr::netlistdb
