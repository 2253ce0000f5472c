#include "analysis/crossings/Controls.h"

#include "analysis/crossings/Wires.h"

#include <algorithm>
#include <utility>

namespace kvr::netlistdb::analysis {

Controls::Controls(Unfolding &design, Registers &registers, CellFunctions &functions, const Cones &cones,
                   std::uint32_t launch, std::uint32_t capture, std::unordered_set<Node> synchronized)
    : m_design(design), m_registers(registers), m_functions(functions), m_cones(cones), m_launch(launch),
      m_capture(capture), m_synchronized(std::move(synchronized))
{
}

/// A net that depends on something synchronized, and on registers of the launch clock only as far as that lets them
/// through.
bool Controls::isControl(Node node)
{
    if (m_design.sets().contains(m_design.launchOf(node), m_launch) &&
        (!m_cones.has(node) || m_wasOpen[m_cones.stepOf(node)])) {
        return false;
    }
    return isSynchronized(node);
}

bool Controls::isSynchronized(Node node)
{
    const auto known = m_known.find(node);
    if (known != m_known.end()) {
        return known->second;
    }
    const bool found = searchBack(node);
    m_known.emplace(node, found);
    return found;
}

/// Back through logic, and a few registers of the capture clock, to the output of a synchronizer.
bool Controls::searchBack(Node start)
{
    std::vector<Node> level{start};
    std::unordered_set<Node> seen{start};
    for (unsigned registers = 0; registers <= MOST_REGISTERS; ++registers) {
        std::vector<Node> behindRegisters;
        while (!level.empty()) {
            const Node node = level.back();
            level.pop_back();
            if (m_synchronized.count(node) != 0) {
                return true;
            }
            const auto reach = [&](std::vector<Node> &to, Node before) {
                if (before != NONE && seen.insert(before).second) {
                    to.push_back(before);
                }
            };
            m_design.forEachSource(
                node,
                [&](const PinPlace &pin) {
                    const CellModel &model = m_design.model(pin);
                    const std::uint32_t data = m_registers.dataOf(pin);
                    if (data != NONE) {
                        for (const std::uint32_t clock : model.captures[data]) {
                            if (m_design.clockAt({pin.context, pin.cell, model.clocks[clock].pin}) == m_capture) {
                                reach(behindRegisters, m_design.nodeAt({pin.context, pin.cell, data}));
                            }
                        }
                    }
                    const std::uint32_t group = model.pins[pin.pin].group;
                    if (group == NONE) {
                        return;
                    }
                    for (const std::uint32_t input : model.groups[group]) {
                        reach(level, m_design.nodeAt({pin.context, pin.cell, input}));
                    }
                },
                [&](Node before) { reach(level, before); }, [](std::uint32_t) {});
        }
        level.swap(behindRegisters);
    }
    return false;
}

/// A multiplexer with too many inputs for a truth table.
bool Controls::isChosen(std::uint32_t context, const Cones::Edge &edge, Node &control)
{
    const CellModel &model = m_design.model(context, edge.cell);
    if (model.kind != CellKind::Multiplexer || model.pins[edge.input].role == PinRole::Select) {
        return false;
    }
    for (const std::uint32_t input : model.groups[model.pins[edge.output].group]) {
        const Node node =
            model.pins[input].role == PinRole::Select ? m_design.nodeAt({context, edge.cell, input}) : NONE;
        if (node != NONE && isControl(node)) {
            control = node;
            return true;
        }
    }
    return false;
}

bool Controls::isBlocked(std::uint32_t context, const Cones::Edge &edge, Node &control)
{
    if (edge.cell == NONE || edge.output == NONE) {
        return false;
    }
    const TruthTable *const table = m_functions.of({context, edge.cell, edge.output});
    if (table == nullptr) {
        return isChosen(context, edge, control);
    }
    std::size_t place = table->inputs.size();
    std::uint32_t controls = 0;
    for (std::size_t at = 0; at < table->inputs.size(); ++at) {
        if (table->inputs[at] == edge.input) {
            place = at;
            continue;
        }
        const Node node = m_design.nodeAt({context, edge.cell, table->inputs[at]});
        if (node != NONE && isControl(node)) {
            controls |= 1U << at;
            control = node;
        }
    }
    return place < table->inputs.size() && table->isBlocked(place, controls);
}

/// What a control lets through may be a control itself: goes on until no more are found.
void Controls::findOpenSteps()
{
    m_wasOpen.assign(m_cones.stepCount(), true);
    std::size_t before = m_cones.stepCount() + std::size_t{1};
    for (std::size_t open = spreadOpenSteps(); open < before; open = spreadOpenSteps()) {
        before = open;
        m_wasOpen = m_isOpen;
    }
}

/// Returns how many steps are open.
std::size_t Controls::spreadOpenSteps()
{
    m_isOpen.assign(m_cones.stepCount(), false);
    m_controlOf.assign(m_cones.stepCount(), NONE);
    std::vector<std::uint32_t> pending;
    for (const Cones::Source &source : m_cones.sources()) {
        if (!m_isOpen[source.step]) {
            m_isOpen[source.step] = true;
            pending.push_back(source.step);
        }
    }
    std::vector<std::uint32_t> closed;
    const auto follow = [&](std::uint32_t step, bool isOpen) {
        for (std::uint32_t at = m_cones.firstEdge(step); at < m_cones.firstEdge(step + 1); ++at) {
            const Cones::Edge &edge = m_cones.edges()[at];
            Node control = NONE;
            if (isOpen && !isBlocked(m_cones.contextOf(edge.to), edge, control)) {
                if (!m_isOpen[edge.to]) {
                    m_isOpen[edge.to] = true;
                    pending.push_back(edge.to);
                }
                continue;
            }
            if (m_controlOf[edge.to] == NONE) {
                m_controlOf[edge.to] = isOpen ? control : m_controlOf[step];
                closed.push_back(edge.to);
            }
        }
    };
    while (!pending.empty()) {
        const std::uint32_t step = pending.back();
        pending.pop_back();
        follow(step, true);
    }
    while (!closed.empty()) {
        const std::uint32_t step = closed.back();
        closed.pop_back();
        if (!m_isOpen[step]) {
            follow(step, false);
        }
    }
    return static_cast<std::size_t>(std::count(m_isOpen.begin(), m_isOpen.end(), true));
}

Node Controls::controlOf(Node node)
{
    if (!any()) {
        return NONE;
    }
    if (m_isOpen.empty()) {
        findOpenSteps();
    }
    const std::uint32_t step = m_cones.stepOf(node);
    return m_isOpen[step] ? NONE : m_controlOf[step];
}

Node Controls::enableOf(const PinPlace &pin)
{
    const CellModel &model = m_design.model(pin);
    if (any() && m_isOpen.empty()) {
        findOpenSteps();
    }
    if (!any() || model.pins[pin.pin].role == PinRole::Enable || !model.isRegister()) {
        return NONE;
    }
    for (std::uint32_t enable = 0; enable < model.pins.size(); ++enable) {
        if (!model.pins[enable].isInput || model.pins[enable].role != PinRole::Enable) {
            continue;
        }
        bool sharesClock = false;
        for (const std::uint32_t clock : model.captures[enable]) {
            for (const std::uint32_t other : model.captures[pin.pin]) {
                sharesClock = sharesClock || clock == other;
            }
        }
        const Node node = sharesClock ? m_design.nodeAt({pin.context, pin.cell, enable}) : NONE;
        if (node != NONE && isControl(node)) {
            return node;
        }
    }
    return NONE;
}

bool Controls::holds(const PinPlace &pin)
{
    const Driver driver = driverOf(m_design, m_design.nodeAt(pin));
    if (!driver.pin) {
        return false;
    }
    const CellModel &model = m_design.model(*driver.pin);
    const std::uint32_t group = model.pins[driver.pin->pin].group;
    if (group == NONE) {
        return false;
    }
    const std::vector<Node> own = m_registers.nodesOf(pin);
    for (const std::uint32_t input : model.groups[group]) {
        const Node node = m_design.nodeAt({driver.pin->context, driver.pin->cell, input});
        if (node == NONE || model.pins[input].role == PinRole::Select) {
            continue;
        }
        const Node root = driverOf(m_design, node).node;
        for (const Node output : own) {
            if (root == output) {
                return true;
            }
        }
    }
    return false;
}

} // namespace kvr::netlistdb::analysis
