#include "analysis/Chain.h"

#include "analysis/SourcePlaces.h"
#include "analysis/Texts.h"

#include <DataBase.h>

#include <netlistdb/DesignDatabase.h>
#include <netlistdb/IVDBLineInfo.h>
#include <netlistdb/IVDBNet.h>

#include <algorithm>

namespace kvr::netlistdb::analysis {

ChainStep ChainWriter::step(const Place &place, const FanIn::Way &way) const
{
    const ModuleGraph &module = m_design.module(place);
    ChainStep step{
        way.kind, m_design.itemOf(place.context), m_design.itemOf(place), m_design.nameOf(place), {}, {}, {}, {}, {}};
    const auto nameOfPort = [](const Verific::Port *port) { return std::string(textOf(port->Name())); };
    if (way.cell != NONE) {
        const Verific::Instance *const cell = m_design.instanceOf(place.context, way.cell);
        step.cell = m_design.pathOf(place.context);
        if (cell != nullptr) {
            step.cell.append(step.cell.empty() ? "" : "/").append(textOf(cell->Name()));
            step.cellType = typeOf(cell->View());
            step.place = placeOf(*cell);
        }
        const bool isSub = module.isSub(way.cell);
        const auto pinName = [&](std::uint32_t pin) {
            const Verific::Port *const port =
                isSub ? m_design.hierarchy.modules[module.subs[module.subOf(way.cell)].module].ports[pin].port
                      : m_design.hierarchy.models[module.modelOf(way.cell)].pins[pin].port;
            return nameOfPort(port);
        };
        step.output = pinName(way.output);
        step.input = way.input != NONE && !isSub ? pinName(way.input) : std::string();
    } else if (way.output != NONE) {
        step.output = nameOfPort(module.ports[way.output].port);
    }
    if (step.place.file.empty() && step.net != nullptr) {
        const Verific::Net *const net = m_design.database.sourceNet(step.net, m_design.source);
        step.place = net != nullptr ? placeOf(*net) : SourcePlace();
    }
    return step;
}

std::vector<ChainStep> ChainWriter::data(const FanIn &walk, std::uint32_t node, const FanIn::Way &end) const
{
    std::vector<ChainStep> steps;
    FanIn::Way way = end;
    for (std::uint32_t at = node; at != NONE; at = walk.nodes()[at].after) {
        const FanIn::Node &known = walk.nodes()[at];
        steps.push_back(step({walk.contexts().path(known.context), known.net}, way));
        way = known.way;
    }
    std::reverse(steps.begin(), steps.end());
    return steps;
}

std::vector<ChainStep> ChainWriter::clock(Place place) const
{
    std::vector<ChainStep> steps;
    while (true) {
        const Level level = place.context.back();
        const ModuleGraph &module = m_design.hierarchy.modules[level.module];
        const ModuleClocks &clocks = m_design.clocks[level.module];
        const Span<NetSource> sources = module.sources[place.net];
        const bool isRoot = std::binary_search(clocks.roots.begin(), clocks.roots.end(), place.net);
        FanIn::Way way;
        if (!isRoot && level.sub != NONE) {
            for (const NetSource source : sources) {
                if (source.isPort() && (sources.size() == 1 || module.ports[source.port()].isOutput)) {
                    way = {StepKind::Hierarchy, NONE, source.port(), NONE};
                    break;
                }
            }
        }
        if (way.kind == StepKind::Hierarchy) {
            steps.push_back(step(place, way));
            place.context.pop_back();
            place.net = m_design.netAbove(place.context.back(), level, way.output);
            continue;
        }
        const bool hasDriver = sources.size() == 1 && !sources[0].isPort();
        const CellPin pin = hasDriver ? module.pinAt(sources[0].position()) : CellPin{NONE, NONE};
        if (isRoot || !hasDriver) {
            steps.push_back(step(place, {StepKind::End, pin.cell, pin.pin, NONE}));
            return steps;
        }
        if (module.isSub(pin.cell)) {
            const std::uint32_t sub = module.subOf(pin.cell);
            steps.push_back(step(place, {StepKind::Hierarchy, pin.cell, pin.pin, NONE}));
            place.context.push_back(m_design.below(level, sub));
            place.net = m_design.module(place).ports[pin.pin].net;
            continue;
        }
        const CellModel &model = m_design.hierarchy.models[module.modelOf(pin.cell)];
        const std::uint32_t input = model.pins[pin.pin].passes;
        steps.push_back(step(place, {StepKind::Cell, pin.cell, pin.pin, input}));
        place.net = module.netsOf(pin.cell)[input];
    }
}

} // namespace kvr::netlistdb::analysis
