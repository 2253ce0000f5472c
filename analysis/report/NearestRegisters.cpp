#include "analysis/report/NearestRegisters.h"

#include "analysis/FanIn.h"

namespace kvr::netlistdb::analysis {

namespace {

/// Walks until @p onRegister returns true for a register.
template <typename OnRegister> void walkToRegisters(FanIn &walk, OnRegister onRegister)
{
    std::size_t seen = 0;
    while (walk.step()) {
        for (; seen < walk.ends().size(); ++seen) {
            const FanIn::End &end = walk.ends()[seen];
            if (end.clock != NONE && !end.isNetwork && onRegister(end)) {
                return;
            }
        }
    }
}

std::uint8_t edgesOf(const DesignModel &design, const FanIn &walk, const FanIn::End &end)
{
    const FanIn::Node &node = walk.nodes()[end.node];
    const ModuleGraph &module = design.hierarchy.modules[walk.contexts().level(node.context).module];
    const CellModel &model = design.hierarchy.models[module.modelOf(end.way.cell)];
    unsigned edges = 0;
    for (const CellModel::ClockPin &clock : model.clocks) {
        edges |= clock.pin == end.way.input ? clock.edges : 0U;
    }
    if (electricalRoot(design, {walk.contexts().path(node.context), end.clockNet}).inverted) {
        edges = ((edges & EDGE_RISE) != 0 ? unsigned{EDGE_FALL} : 0U) |
                ((edges & EDGE_FALL) != 0 ? unsigned{EDGE_RISE} : 0U);
    }
    return static_cast<std::uint8_t>(edges);
}

} // namespace

std::uint8_t launchEdges(const DesignModel &design, const Place &place, std::uint32_t clock)
{
    FanIn walk(design, place);
    std::uint8_t edges = 0;
    walkToRegisters(walk, [&](const FanIn::End &end) {
        const bool isIt = end.clock == clock && end.way.input != NONE;
        edges = isIt ? edgesOf(design, walk, end) : edges;
        return isIt;
    });
    return edges;
}

std::vector<Place> nearestRegisters(const DesignModel &design, const Place &place, std::size_t most)
{
    FanIn walk(design, place);
    std::vector<Place> places;
    walkToRegisters(walk, [&](const FanIn::End &end) {
        const FanIn::Node &node = walk.nodes()[end.node];
        places.push_back({walk.contexts().path(node.context), node.net});
        return places.size() >= most;
    });
    return places;
}

} // namespace kvr::netlistdb::analysis
