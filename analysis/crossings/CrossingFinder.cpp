#include "analysis/crossings/CrossingFinder.h"

#include "analysis/ClockTable.h"

#include <algorithm>
#include <utility>

namespace kvr::netlistdb::analysis {

CrossingFinder::CrossingFinder(const DesignModel &design, const ClockTable &table, ClockRelations relations)
    : m_model(design), m_table(table), m_relations(std::move(relations)), m_design(design), m_registers(m_design),
      m_functions(m_design), m_synchronizers(m_design, m_registers), m_ends(m_design, m_registers)
{
}

std::vector<Crossing> CrossingFinder::find()
{
    unfold();
    std::size_t most = m_found.size();
    for (const auto &[launch, targets] : m_targets) {
        most += targets.size();
    }
    m_found.reserve(most);
    for (auto &[launch, targets] : m_targets) {
        follow(launch, targets);
        targets = {};
    }
    return std::move(m_found);
}

void CrossingFinder::unfold()
{
    const CrossingPins pins(m_model);
    std::vector<std::pair<std::uint32_t, std::uint32_t>> pending{{Unfolding::TOP, CrossingPins::TOP}};
    while (!pending.empty()) {
        const auto [context, number] = pending.back();
        pending.pop_back();
        const CrossingPins::Use &use = pins.uses()[number];
        for (const PinOfCell &pin : use.pins) {
            if (pin.pin == NONE) {
                addMemory(context, pin.cell);
            } else {
                addPin(context, pin);
            }
        }
        for (std::uint32_t sub = 0; sub < use.subs.size(); ++sub) {
            if (pins.uses()[use.subs[sub]].hasCrossings) {
                pending.emplace_back(m_design.inside(context, sub), use.subs[sub]);
            }
        }
    }
}

/// A module may have clocks that clock nothing in some of its instances: these have no number among the clocks.
bool CrossingFinder::isExcluded(std::uint32_t launch, std::uint32_t capture) const
{
    const ClockId from = m_table.idOf(launch);
    const ClockId to = m_table.idOf(capture);
    return from == to || from == NONE || to == NONE || m_relations.exclusive(from, to);
}

void CrossingFinder::addPin(std::uint32_t context, const PinOfCell &pin)
{
    CrossingTarget target{};
    target.pin = {context, pin.cell, pin.pin};
    target.launched = m_design.launchOf(m_design.nodeAt(target.pin));
    const CellModel &model = m_design.model(target.pin);
    const bool isUnclocked =
        isAsynchronous(model.pins[pin.pin].role) &&
        (m_design.sets().flags(target.launched) & (REACHED_BY_INPUT_PORT | REACHED_BY_BLACK_BOX)) != 0;
    for (const std::uint32_t capture :
         capturingClocks(m_design.modules(), m_design.moduleOf(context), m_design.bindingOf(context), pin)) {
        target.capture = capture;
        for (const std::uint32_t launch : m_design.sets().clocks(target.launched)) {
            if (!isExcluded(launch, capture)) {
                m_targets[launch].push_back(target);
            }
        }
        if (isUnclocked && m_table.idOf(capture) != NONE) {
            m_targets[UNCLOCKED].push_back(target);
        }
    }
}

void CrossingFinder::addMemory(std::uint32_t context, std::uint32_t cell)
{
    for (const MemoryClocks &clocks :
         memoryClocks(m_design.modules(), m_design.moduleOf(context), m_design.bindingOf(context), cell)) {
        if (isExcluded(clocks.write, clocks.read)) {
            continue;
        }
        CrossingTarget target{};
        target.pin = {context, cell, NONE};
        target.capture = clocks.read;
        CrossingPath path(target);
        path.source = {context, cell, clocks.output};
        path.sourceNode = m_design.nodeAt(path.source);
        path.from = m_ends.source(path.source, path.sourceNode);
        path.from.pin.clear();
        path.to = path.from;
        path.is(CrossingClass::Memory);
        m_found.push_back(report(clocks.write, path));
    }
}

void CrossingFinder::follow(std::uint32_t launch, const std::vector<CrossingTarget> &targets)
{
    std::vector<CrossingPath> paths(targets.begin(), targets.end());
    std::vector<Node> ends;
    ends.reserve(paths.size());
    for (const CrossingPath &path : paths) {
        ends.push_back(m_design.nodeAt(path.pin));
    }
    const Cones cones(m_design, launch, ends);
    std::map<std::uint32_t, std::vector<CrossingPath *>> pairs; ///< by capture clock
    for (std::size_t at = 0; at < paths.size(); ++at) {
        CrossingPath &path = paths[at];
        path.reach = cones.reach(ends[at]);
        if (path.reach.source == NONE) {
            continue;
        }
        const Cones::Source &source = cones.sources()[path.reach.source];
        path.source = source.pin;
        path.sourceNode = source.node;
        const bool isPort = source.pin.cell == NONE;
        path.from = isPort ? m_ends.port(source.pin.pin, source.node) : m_ends.source(source.pin, source.node);
        path.to = m_ends.target(path.pin);
        pairs[path.capture].push_back(&path);
    }
    for (const auto &[capture, pair] : pairs) {
        std::vector<CrossingPath *> others;
        for (CrossingPath *const path : pair) {
            if (isAsynchronous(m_design.model(path->pin).pins[path->pin.pin].role)) {
                classifyReset(launch, *path);
            } else {
                others.push_back(path);
            }
        }
        if (!others.empty()) {
            classifyPair(launch, capture, cones, others);
        }
        for (CrossingPath *const path : pair) {
            m_found.push_back(report(launch, *path));
        }
    }
}

Crossing CrossingFinder::report(std::uint32_t launch, CrossingPath &path)
{
    Crossing crossing{};
    crossing.from = std::move(path.from);
    crossing.to = std::move(path.to);
    if (launch != UNCLOCKED) {
        crossing.launch = m_table.idOf(launch);
    }
    crossing.capture = m_table.idOf(path.capture);
    crossing.cells = path.reach.cells;
    crossing.kinds = path.kinds;
    while (!crossing.holds(crossing.kind)) {
        crossing.kind = static_cast<CrossingClass>(static_cast<unsigned>(crossing.kind) + 1);
    }
    crossing.stages = path.isSynchronized() ? static_cast<std::uint32_t>(path.chain.stages.size()) : 0;
    crossing.isKept = path.isSynchronized() && path.chain.isKept;
    crossing.hasSeveralSources = path.reach.hasSeveral;
    crossing.hasLogic = path.reach.hasLogic;
    crossing.control = path.control != NONE ? m_ends.nameOf(path.control) : std::string();
    crossing.meets = path.meets != NONE ? m_ends.nameOf(path.meets) : std::string();
    crossing.place = m_ends.placeOf(path.pin, crossing.to.net);
    return crossing;
}

} // namespace kvr::netlistdb::analysis
