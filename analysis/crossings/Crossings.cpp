#include "analysis/ClockMapState.h"
#include "analysis/crossings/CrossingFinder.h"

#include <algorithm>
#include <string_view>
#include <tuple>

namespace kvr::netlistdb::analysis {

Crossings::Crossings(const ClockMap &map, const std::vector<ClockGroups> &groups)
{
    const ClockMap::State &state = map.state();
    requireCurrent(state);
    m_all = CrossingFinder(state.design, state.table, ClockRelations(map, groups)).find();
    // Clocks are numbered in the order of their names.
    const auto key = [](const Crossing &crossing) {
        const CrossingEnd &to = crossing.to;
        return std::tuple(crossing.launch, crossing.capture, std::string_view(to.bus.empty() ? to.name : to.bus),
                          to.bit, std::string_view(to.name), std::string_view(to.cell), std::string_view(to.pin),
                          std::string_view(crossing.from.name));
    };
    std::stable_sort(m_all.begin(), m_all.end(),
                     [&](const Crossing &a, const Crossing &b) { return key(a) < key(b); });
}

} // namespace kvr::netlistdb::analysis
