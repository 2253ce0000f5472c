#include "analysis/ClockMapState.h"
#include "analysis/crossings/CrossingFinder.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <tuple>

namespace kvr::netlistdb::analysis {

Crossings::Crossings(const ClockMap &map, const std::vector<ClockGroups> &groups)
{
    const ClockMap::State &state = map.state();
    requireCurrent(state);
    std::vector<Crossing> found = CrossingFinder(state.design, state.table, ClockRelations(map, groups)).find();
    // Clocks are numbered in the order of their names.
    const auto key = [](const Crossing &crossing) {
        const CrossingEnd &to = crossing.to;
        return std::tuple(crossing.launch, crossing.capture, std::string_view(to.bus.empty() ? to.name : to.bus),
                          to.bit, std::string_view(to.name), std::string_view(to.cell), std::string_view(to.pin),
                          std::string_view(crossing.from.name));
    };
    // Crossings are large: places are sorted instead.
    std::vector<std::size_t> order(found.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return key(found[a]) < key(found[b]); });
    m_all.reserve(found.size());
    for (const std::size_t place : order) {
        m_all.push_back(std::move(found[place]));
    }
}

} // namespace kvr::netlistdb::analysis
