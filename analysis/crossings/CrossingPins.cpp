#include "analysis/crossings/CrossingPins.h"

#include <algorithm>
#include <unordered_map>

namespace kvr::netlistdb::analysis {

namespace {

/// In a use, clocks that begin inside have numbers from here on; those that come in through ports, small ones.
constexpr std::uint32_t INSIDE = 1U << 30;

constexpr std::uint32_t FROM_OUTSIDE = REACHED_BY_INPUT_PORT | REACHED_BY_BLACK_BOX;

void addOnce(std::vector<std::uint32_t> &clocks, std::uint32_t clock)
{
    const auto at = std::lower_bound(clocks.begin(), clocks.end(), clock);
    if (clock != NONE && (at == clocks.end() || *at != clock)) {
        clocks.insert(at, clock);
    }
}

/// Tells for the pins of one bound module whether a crossing ends there. Most pins of a module are on few sets and
/// clocks: what was found for the last ones is kept.
class PinTest {
  public:
    PinTest(const BoundModules &modules, std::uint32_t module, const PortBinding &binding)
        : m_modules(modules), m_module(module), m_binding(binding),
          m_launch(modules.design().sets[module].launchTable.size(), NONE)
    {
    }

    void find(std::vector<PinOfCell> &found)
    {
        const ModuleGraph &graph = m_modules.design().hierarchy.modules[m_module];
        for (std::uint32_t cell = 0; cell < graph.cellCount(); ++cell) {
            if (graph.isSub(cell)) {
                continue;
            }
            const CellModel &model = m_modules.design().hierarchy.models[graph.modelOf(cell)];
            if (model.isRegister()) {
                findInRegister(cell, model, found);
            } else if (model.kind == CellKind::Latch) {
                findInLatch(cell, model, found);
            }
        }
    }

  private:
    void findInRegister(std::uint32_t cell, const CellModel &model, std::vector<PinOfCell> &found)
    {
        const Span<std::uint32_t> nets = netsOf(cell);
        m_clocks.clear();
        for (const CellModel::ClockPin &clock : model.clocks) {
            m_clocks.push_back(nets[clock.pin] != NONE ? m_modules.clock(m_module, m_binding, nets[clock.pin]) : NONE);
        }
        for (std::uint32_t pin = 0; pin < nets.size(); ++pin) {
            if (nets[pin] != NONE && model.pins[pin].isInput && crosses(model, pin, launchOf(nets[pin]))) {
                found.push_back({cell, pin});
            }
        }
        if (model.kind == CellKind::Memory && !memoryClocks(m_modules, m_module, m_binding, cell).empty()) {
            found.push_back({cell, NONE});
        }
    }

    bool crosses(const CellModel &model, std::uint32_t pin, std::uint32_t launch) const
    {
        for (const std::uint32_t clock : model.captures[pin]) {
            if (m_clocks[clock] != NONE &&
                (m_modules.sets().containsOther(launch, m_clocks[clock]) ||
                 (isAsynchronous(model.pins[pin].role) && (m_modules.sets().flags(launch) & FROM_OUTSIDE) != 0))) {
                return true;
            }
        }
        return false;
    }

    void findInLatch(std::uint32_t cell, const CellModel &model, std::vector<PinOfCell> &found)
    {
        const Span<std::uint32_t> nets = netsOf(cell);
        for (std::uint32_t pin = 0; pin < nets.size(); ++pin) {
            if (nets[pin] == NONE || !model.pins[pin].isInput) {
                continue;
            }
            for (const std::uint32_t clock : capturingClocks(m_modules, m_module, m_binding, {cell, pin})) {
                if (m_modules.sets().containsOther(launchOf(nets[pin]), clock)) {
                    found.push_back({cell, pin});
                    break;
                }
            }
        }
    }

    Span<std::uint32_t> netsOf(std::uint32_t cell) const
    {
        return m_modules.design().hierarchy.modules[m_module].netsOf(cell);
    }

    std::uint32_t launchOf(std::uint32_t net)
    {
        std::uint32_t &known = m_launch[m_modules.design().sets[m_module].launch[net].set];
        if (known == NONE) {
            known = m_modules.launch(m_module, m_binding, net);
        }
        return known;
    }

    const BoundModules &m_modules;
    std::uint32_t m_module;
    const PortBinding &m_binding;
    std::vector<std::uint32_t> m_launch; ///< by set of the module
    std::vector<std::uint32_t> m_clocks; ///< by clock of the model
};

} // namespace

bool isAsynchronous(PinRole role)
{
    return role == PinRole::AsyncSetReset || role == PinRole::SetReset;
}

std::vector<std::uint32_t> capturingClocks(const BoundModules &modules, std::uint32_t module,
                                           const PortBinding &binding, const PinOfCell &pin)
{
    const CellModel &model = modules.model(module, pin.cell);
    const Span<std::uint32_t> nets = modules.design().hierarchy.modules[module].netsOf(pin.cell);
    std::vector<std::uint32_t> clocks;
    if (model.isRegister()) {
        for (const std::uint32_t clock : model.captures[pin.pin]) {
            const std::uint32_t net = nets[model.clocks[clock].pin];
            addOnce(clocks, net != NONE ? modules.clock(module, binding, net) : NONE);
        }
    } else if (model.kind == CellKind::Latch) {
        for (std::uint32_t gate = 0; gate < nets.size(); ++gate) {
            if (gate != pin.pin && nets[gate] != NONE && model.pins[gate].isInput) {
                addOnce(clocks, modules.clock(module, binding, nets[gate]));
            }
        }
    }
    return clocks;
}

std::vector<MemoryClocks> memoryClocks(const BoundModules &modules, std::uint32_t module, const PortBinding &binding,
                                       std::uint32_t cell)
{
    const CellModel &model = modules.model(module, cell);
    const Span<std::uint32_t> nets = modules.design().hierarchy.modules[module].netsOf(cell);
    std::vector<std::uint32_t> writes;
    std::vector<MemoryClocks> pairs;
    if (model.clocks.size() < 2) {
        return pairs;
    }
    const auto clockOf = [&](std::uint32_t clock) {
        const std::uint32_t net = nets[model.clocks[clock].pin];
        return net != NONE ? modules.clock(module, binding, net) : NONE;
    };
    for (std::uint32_t pin = 0; pin < model.pins.size(); ++pin) {
        if (model.pins[pin].isInput && model.pins[pin].role == PinRole::Data && nets[pin] != NONE) {
            for (const std::uint32_t clock : model.captures[pin]) {
                addOnce(writes, clockOf(clock));
            }
        }
    }
    for (std::uint32_t pin = 0; pin < model.pins.size(); ++pin) {
        if (!model.pins[pin].isOutput || nets[pin] == NONE || model.pins[pin].group != NONE) {
            continue;
        }
        for (const std::uint32_t clock : model.launches[pin]) {
            for (const std::uint32_t write : writes) {
                const std::uint32_t read = clockOf(clock);
                const bool known = std::any_of(pairs.begin(), pairs.end(), [&](const MemoryClocks &each) {
                    return each.write == write && each.read == read;
                });
                if (read != NONE && read != write && !known) {
                    pairs.push_back({write, read, pin});
                }
            }
        }
    }
    return pairs;
}

CrossingPins::CrossingPins(const DesignModel &design) : m_modules(design, m_sets)
{
    useOf(design.hierarchy.top(), m_modules.top());
    for (std::uint32_t use = 0; use < m_uses.size(); ++use) {
        findPins(use);
    }
    // A module stands behind those that it instantiates.
    std::vector<std::uint32_t> order(m_uses.size());
    for (std::uint32_t use = 0; use < order.size(); ++use) {
        order[use] = use;
    }
    std::stable_sort(order.begin(), order.end(),
                     [this](std::uint32_t a, std::uint32_t b) { return m_uses[a].module < m_uses[b].module; });
    for (const std::uint32_t use : order) {
        m_uses[use].hasCrossings =
            !m_uses[use].pins.empty() || std::any_of(m_uses[use].subs.begin(), m_uses[use].subs.end(),
                                                     [this](std::uint32_t sub) { return m_uses[sub].hasCrossings; });
    }
}

std::uint32_t CrossingPins::useOf(std::uint32_t module, PortBinding binding)
{
    const PortBinding renumbered = renumber(binding);
    std::vector<std::uint32_t> key{module};
    for (std::size_t port = 0; port < renumbered.launch.size(); ++port) {
        key.insert(key.end(), {renumbered.launch[port], renumbered.capture[port], renumbered.clock[port]});
    }
    const auto [found, isNew] = m_numbers.try_emplace(std::move(key), static_cast<std::uint32_t>(m_uses.size()));
    if (isNew) {
        m_uses.push_back({module, false, {}, {}});
        m_bindings.push_back(renumbered);
    }
    return found->second;
}

/// Whether clocks differ is all that counts: the first clock that a port meets becomes 0, the next one 1.
PortBinding CrossingPins::renumber(const PortBinding &binding)
{
    std::unordered_map<std::uint32_t, std::uint32_t> numbers;
    const auto numberOf = [&](std::uint32_t clock) {
        return numbers.try_emplace(clock, static_cast<std::uint32_t>(numbers.size())).first->second;
    };
    const auto renumberSet = [&](std::uint32_t set) {
        std::vector<std::uint32_t> clocks;
        for (const std::uint32_t clock : m_sets.clocks(set)) {
            clocks.push_back(numberOf(clock));
        }
        return m_sets.intern(std::move(clocks), m_sets.flags(set) & FROM_OUTSIDE);
    };
    PortBinding renumbered;
    for (std::size_t port = 0; port < binding.launch.size(); ++port) {
        const std::uint32_t clock = binding.clock[port];
        renumbered.clock.push_back(clock != NONE ? numberOf(clock) : NONE);
        renumbered.launch.push_back(renumberSet(binding.launch[port]));
        // Where crossings end depends on what launches them only.
        renumbered.capture.push_back(0);
    }
    renumbered.firstClock = INSIDE;
    return renumbered;
}

void CrossingPins::findPins(std::uint32_t use)
{
    const std::uint32_t module = m_uses[use].module;
    const PortBinding binding = m_bindings[use];
    PinTest(m_modules, module, binding).find(m_uses[use].pins);
    std::vector<std::uint32_t> subs;
    const std::size_t count = m_modules.design().hierarchy.modules[module].subs.size();
    for (std::uint32_t sub = 0; sub < count; ++sub) {
        subs.push_back(useOf(m_modules.design().hierarchy.modules[module].subs[sub].module,
                             m_modules.inside(module, binding, sub)));
    }
    m_uses[use].subs = std::move(subs);
    m_bindings[use] = {};
}

} // namespace kvr::netlistdb::analysis
