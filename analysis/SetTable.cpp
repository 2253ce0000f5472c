#include "analysis/SetTable.h"

#include <algorithm>

namespace kvr::netlistdb::analysis {

namespace {

std::uint64_t mixed(std::uint64_t value)
{
    value ^= value >> 32;
    value *= 0x9E3779B97F4A7C15U;
    return value ^ (value >> 29);
}

} // namespace

SetTable::SetTable()
{
    growPlaces();
    find({}, 0);
}

void SetTable::growPlaces()
{
    m_places.assign(m_places.empty() ? 16 : m_places.size() * 2, NONE);
    for (std::uint32_t set = 0; set < m_sets.size(); ++set) {
        std::size_t at = m_hashes[set] & (m_places.size() - 1);
        while (m_places[at] != NONE) {
            at = (at + 1) & (m_places.size() - 1);
        }
        m_places[at] = set;
    }
}

std::uint32_t SetTable::find(const Entries &entries, std::uint32_t flags)
{
    std::uint64_t sum = mixed(flags + 1);
    for (const Entry &entry : entries) {
        sum = mixed(sum + (std::uint64_t{entry.atom.code()} << 32 | entry.distance));
    }
    const auto hash = static_cast<std::uint32_t>(sum);
    std::size_t at = hash & (m_places.size() - 1);
    for (; m_places[at] != NONE; at = (at + 1) & (m_places.size() - 1)) {
        const std::uint32_t set = m_places[at];
        const Span<Entry> known = (*this)[set];
        if (m_hashes[set] == hash && m_sets[set].flags == flags && known.size() == entries.size() &&
            std::equal(known.begin(), known.end(), entries.begin())) {
            return set;
        }
    }
    const auto set = static_cast<std::uint32_t>(m_sets.size());
    m_sets.push_back({m_entries.size(), static_cast<std::uint32_t>(entries.size()), flags});
    m_entries.insert(m_entries.end(), entries.begin(), entries.end());
    m_hashes.push_back(hash);
    m_places[at] = set;
    if (m_sets.size() * 2 > m_places.size()) {
        growPlaces();
    }
    return set;
}

SetTable::Ref SetTable::intern(const Entries &entries, std::uint32_t flags)
{
    std::uint32_t nearest = entries.empty() ? 0 : entries.front().distance;
    for (const Entry &entry : entries) {
        nearest = std::min(nearest, entry.distance);
    }
    if (nearest == 0) {
        return {find(entries, flags), 0};
    }
    Entries normal = entries;
    for (Entry &entry : normal) {
        entry.distance -= nearest;
    }
    return {find(normal, flags), nearest};
}

SetTable::Ref SetTable::merge(Ref a, Ref b)
{
    if (a.set == b.set) {
        return {a.set, std::min(a.distance, b.distance)};
    }
    if (a.set == 0 || b.set == 0) {
        return a.set == 0 ? b : a;
    }
    // A set without atoms is at no distance of its own.
    if ((*this)[a.set].empty()) {
        a.distance = b.distance;
    } else if ((*this)[b.set].empty()) {
        b.distance = a.distance;
    }
    if (b.distance < a.distance || (b.distance == a.distance && b.set < a.set)) {
        std::swap(a, b);
    }
    const std::uint32_t further = b.distance - a.distance;
    if (m_merged.empty()) {
        m_merged.resize(1024);
    } else if (m_merged.size() < 65536 && m_sets.size() > m_merged.size()) {
        m_merged.assign(m_merged.size() * 8, Merged());
    }
    const std::uint64_t hash = mixed(mixed((std::uint64_t{a.set} << 32 | b.set) + 1) + further);
    Merged *known = &m_merged[hash & (m_merged.size() - 1)];
    if (known->a != a.set || known->b != b.set || known->further != further) {
        *known = {a.set, b.set, further, mergeAnew(a.set, b.set, further)};
    }
    return {known->result.set, a.distance + known->result.distance};
}

SetTable::Ref SetTable::mergeAnew(std::uint32_t a, std::uint32_t b, std::uint32_t further)
{
    Entries merged((*this)[a].begin(), (*this)[a].end());
    mergeEntries(merged, (*this)[b], further, m_scratch);
    return intern(merged, flags(a) | flags(b));
}

void SetTable::finish()
{
    m_places = {};
    m_hashes = {};
    m_merged = {};
    m_scratch = {};
    m_sets.shrink_to_fit();
    m_entries.shrink_to_fit();
}

} // namespace kvr::netlistdb::analysis
