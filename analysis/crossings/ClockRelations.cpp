#include "analysis/crossings/ClockRelations.h"

#include <algorithm>
#include <optional>

namespace kvr::netlistdb::analysis {

namespace {

std::optional<std::size_t> groupOf(const ClockGroups &groups, ClockId clock)
{
    for (std::size_t group = 0; group < groups.groups.size(); ++group) {
        const std::vector<ClockId> &clocks = groups.groups[group];
        if (std::find(clocks.begin(), clocks.end(), clock) != clocks.end()) {
            return group;
        }
    }
    return std::nullopt;
}

} // namespace

bool ClockRelations::related(ClockId a, ClockId b)
{
    const auto [found, isNew] = m_known.try_emplace(std::pair(std::min(a, b), std::max(a, b)), false);
    if (isNew) {
        found->second = find(a, b);
    }
    return found->second;
}

bool ClockRelations::find(ClockId a, ClockId b) const
{
    for (auto groups = m_groups.rbegin(); groups != m_groups.rend(); ++groups) {
        const std::optional<std::size_t> ofA = groupOf(*groups, a);
        const std::optional<std::size_t> ofB = groupOf(*groups, b);
        if (groups->kind == ClockGroups::Kind::Asynchronous && ofA && ofB) {
            return *ofA == *ofB;
        }
    }
    return m_map.related(a, b);
}

bool ClockRelations::exclusive(ClockId a, ClockId b) const
{
    return std::any_of(m_groups.begin(), m_groups.end(), [&](const ClockGroups &groups) {
        const std::optional<std::size_t> ofA = groupOf(groups, a);
        const std::optional<std::size_t> ofB = groupOf(groups, b);
        return groups.kind == ClockGroups::Kind::Exclusive && ofA && ofB && *ofA != *ofB;
    });
}

} // namespace kvr::netlistdb::analysis
