#include "analysis/ModuleGraph.h"

#include <algorithm>

namespace kvr::netlistdb::analysis {

NetSources::NetSources(const Lists<NetSource> &all)
{
    m_first.reserve(all.size());
    for (std::size_t net = 0; net < all.size(); ++net) {
        const Span<NetSource> sources = all[net];
        if (sources.size() == 1) {
            m_first.push_back(sources[0]);
        } else {
            m_first.push_back(NetSource(static_cast<std::uint32_t>(m_several.size()) | SEVERAL));
            m_several.addList(sources);
        }
    }
    m_several.shrink();
}

CellPin ModuleGraph::pinAt(std::uint32_t position) const
{
    std::uint32_t cell = m_cellOfBlock[position / BLOCK];
    while (m_firstPin[cell + 1] <= position) {
        ++cell;
    }
    return {cell, position - m_firstPin[cell]};
}

Span<ModuleGraph::WrittenBy> ModuleGraph::writesOf(std::uint32_t cell) const
{
    const auto before = [](const WrittenBy &each, std::uint32_t wanted) { return each.cell < wanted; };
    const auto first = std::lower_bound(writes.begin(), writes.end(), cell, before);
    const auto end = std::lower_bound(first, writes.end(), cell + 1, before);
    return {writes.data() + (first - writes.begin()), writes.data() + (end - writes.begin())};
}

std::size_t ModuleGraph::memory() const
{
    return sizeof(*this) + ports.capacity() * sizeof(ModulePort) + subs.capacity() * sizeof(SubInstance) +
           repeats.capacity() * sizeof(std::uint32_t) + writes.capacity() * sizeof(WrittenBy) + sources.memory() +
           (m_cells.capacity() + m_firstPin.capacity() + m_pinNets.capacity() + m_cellOfBlock.capacity()) *
               sizeof(std::uint32_t);
}

} // namespace kvr::netlistdb::analysis
