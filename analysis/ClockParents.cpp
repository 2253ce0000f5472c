#include "analysis/ClockParents.h"

#include "analysis/BoundSets.h"

#include <algorithm>

namespace kvr::netlistdb::analysis {

namespace {

/// The clocks of a set that @p take holds for.
template <typename Take> std::vector<ClockId> chosen(const BoundSet &set, const std::vector<ClockId> &ids, Take take)
{
    std::vector<ClockId> clocks;
    for (const BoundClock &each : set.clocks) {
        if (ids[each.clock] != NONE && take(each)) {
            clocks.push_back(ids[each.clock]);
        }
    }
    std::sort(clocks.begin(), clocks.end());
    clocks.erase(std::unique(clocks.begin(), clocks.end()), clocks.end());
    return clocks;
}

/// The clocks on the clock inputs of the generator that drives the net.
std::vector<ClockId> generatorInputs(const DesignModel &design, const std::vector<ClockId> &ids, const Place &place)
{
    std::vector<ClockId> clocks;
    const ModuleGraph &module = design.module(place);
    for (const NetSource source : module.sources[place.net]) {
        const CellPin pin = source.isPort() ? CellPin{NONE, 0} : module.pinAt(source.position());
        if (pin.cell == NONE || module.isSub(pin.cell)) {
            continue;
        }
        const CellModel &model = design.hierarchy.models[module.modelOf(pin.cell)];
        for (std::uint32_t input = 0; input < model.pins.size(); ++input) {
            const std::uint32_t net = module.netsOf(pin.cell)[input];
            if (model.pins[input].role == PinRole::Reference && net != NONE) {
                const std::uint32_t clock = electricalRoot(design, {place.context, net}).clock;
                if (clock != NONE && ids[clock] != NONE) {
                    clocks.push_back(ids[clock]);
                }
            }
        }
    }
    std::sort(clocks.begin(), clocks.end());
    clocks.erase(std::unique(clocks.begin(), clocks.end()), clocks.end());
    return clocks;
}

} // namespace

std::vector<ClockId> clockInputs(const DesignModel &design, const std::vector<ClockId> &ids, ClockRoot root,
                                 std::uint32_t clock)
{
    const Place place = design.rootOf(clock);
    switch (root) {
    case ClockRoot::Register:
        return chosen(boundLaunch(design, place.context, place.net), ids,
                      [](const BoundClock &each) { return !each.isNetwork && each.cells == 0; });
    case ClockRoot::Logic: {
        const BoundSet set = boundLaunch(design, place.context, place.net);
        std::vector<ClockId> clocks =
            chosen(set, ids, [&](const BoundClock &each) { return each.isNetwork && each.clock != clock; });
        // A port or black box that goes in may be the clock, and the registers then only gate it.
        const bool isMadeOfRegisters = (set.flags & (REACHED_BY_INPUT_PORT | REACHED_BY_BLACK_BOX)) == 0;
        if (clocks.empty() && isMadeOfRegisters) {
            clocks = chosen(set, ids, [](const BoundClock &each) { return !each.isNetwork; });
        }
        return clocks;
    }
    case ClockRoot::BlackBox:
        return generatorInputs(design, ids, place);
    default:
        return {};
    }
}

} // namespace kvr::netlistdb::analysis
