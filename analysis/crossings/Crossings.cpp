#include "analysis/ClockMapState.h"
#include "analysis/crossings/CrossingFinder.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <tuple>
#include <utility>

namespace kvr::netlistdb::analysis {

namespace {

/// Moves to each place of @p items what stands at the place that @p order, a permutation, names for it. Cycle by cycle,
/// with room for one item. Destroys the order.
template <typename Item> void moveInto(std::vector<Item> &items, std::vector<std::size_t> &order)
{
    for (std::size_t begin = 0; begin < order.size(); ++begin) {
        if (order[begin] == begin) {
            continue;
        }
        Item first = std::move(items[begin]);
        std::size_t place = begin;
        for (std::size_t from = order[place]; from != begin; from = order[place]) {
            items[place] = std::move(items[from]);
            order[place] = place;
            place = from;
        }
        items[place] = std::move(first);
        order[place] = place;
    }
}

} // namespace

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
    // Crossings are large: places are sorted instead.
    std::vector<std::size_t> order(m_all.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return key(m_all[a]) < key(m_all[b]); });
    moveInto(m_all, order);
}

} // namespace kvr::netlistdb::analysis
