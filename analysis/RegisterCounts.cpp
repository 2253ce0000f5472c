#include "analysis/RegisterCounts.h"

#include <algorithm>

namespace kvr::netlistdb::analysis {

namespace {

/// Uses of clocks inside one module: of those that begin there, and of what comes in through its ports.
struct ModuleUses {
    std::vector<ClockUse> clocks;
    std::vector<ClockUse> ports; ///< `clock` is the port
};

std::uint8_t swapped(std::uint8_t edges)
{
    return static_cast<std::uint8_t>(((edges & EDGE_RISE) != 0 ? EDGE_FALL : 0) |
                                     ((edges & EDGE_FALL) != 0 ? EDGE_RISE : 0));
}

void unite(std::vector<ClockUse> &uses)
{
    if (uses.empty()) {
        return;
    }
    std::stable_sort(uses.begin(), uses.end(), [](const ClockUse &a, const ClockUse &b) { return a.clock < b.clock; });
    auto last = uses.begin();
    for (auto each = last + 1; each != uses.end(); ++each) {
        if (each->clock == last->clock) {
            last->edges = static_cast<std::uint8_t>(last->edges | each->edges);
            last->registers += each->registers;
        } else {
            *++last = *each;
        }
    }
    uses.erase(last + 1, uses.end());
}

class UseFinder {
  public:
    UseFinder(const Hierarchy &hierarchy, const std::vector<ModuleClocks> &clocks, std::uint32_t module,
              const std::vector<ModuleUses> &below)
        : m_hierarchy(hierarchy), m_module(hierarchy.modules[module]), m_clocks(clocks[module]), m_below(below)
    {
    }

    ModuleUses find()
    {
        for (std::uint32_t cell = 0; cell < m_module.cellCount(); ++cell) {
            if (!m_module.isSub(cell)) {
                addCell(cell);
            }
        }
        for (std::uint32_t sub = 0; sub < m_module.subs.size(); ++sub) {
            const ModuleUses &inside = m_below[m_module.subs[sub].module];
            for (ClockUse use : inside.clocks) {
                use.clock += m_clocks.firstOfSub[sub];
                m_uses.clocks.push_back(use);
            }
            for (const ClockUse &use : inside.ports) {
                add(m_module.netsOf(m_module.subs[sub].cell)[use.clock], use.edges, use.registers);
            }
        }
        unite(m_uses.clocks);
        unite(m_uses.ports);
        return std::move(m_uses);
    }

  private:
    void addCell(std::uint32_t cell)
    {
        const CellModel &model = m_hierarchy.models[m_module.modelOf(cell)];
        const Span<std::uint32_t> nets = m_module.netsOf(cell);
        if (model.kind == CellKind::ClockGenerator) {
            for (std::uint32_t pin = 0; pin < model.pins.size(); ++pin) {
                if (model.pins[pin].role == PinRole::Reference) {
                    add(nets[pin], 0, 0);
                }
            }
        }
        const bool repeats = std::binary_search(m_module.repeats.begin(), m_module.repeats.end(), cell);
        for (std::size_t clock = 0; clock < model.clocks.size(); ++clock) {
            const std::uint32_t net = nets[model.clocks[clock].pin];
            // A cell counts once for a net, however many of its pins are on it.
            const bool isFirst =
                std::none_of(model.clocks.begin(), model.clocks.begin() + static_cast<std::ptrdiff_t>(clock),
                             [&](const CellModel::ClockPin &other) { return nets[other.pin] == net; });
            add(net, model.clocks[clock].edges, isFirst && !repeats ? 1 : 0);
        }
    }

    void add(std::uint32_t net, std::uint8_t edges, std::uint64_t registers)
    {
        if (net == NONE) {
            return;
        }
        const ElectricalCode code = m_clocks.nets[net];
        std::vector<ClockUse> &uses = code.kind() == ElectricalCode::Clock ? m_uses.clocks : m_uses.ports;
        edges = code.isInverted() ? swapped(edges) : edges;
        // The registers of a bank mostly stand together.
        if (!uses.empty() && uses.back().clock == code.number()) {
            uses.back().edges = static_cast<std::uint8_t>(uses.back().edges | edges);
            uses.back().registers += registers;
        } else {
            uses.push_back({code.number(), edges, registers});
            if (uses.size() > m_limit) {
                unite(uses);
                m_limit = std::max<std::size_t>(1024, uses.size() * 2);
            }
        }
    }

    const Hierarchy &m_hierarchy;
    const ModuleGraph &m_module;
    const ModuleClocks &m_clocks;
    const std::vector<ModuleUses> &m_below;
    ModuleUses m_uses;
    std::size_t m_limit = 1024; ///< uses in one list before equal ones are put together
};

} // namespace

std::vector<ClockUse> countRegisters(const Hierarchy &hierarchy, const std::vector<ModuleClocks> &clocks)
{
    std::vector<ModuleUses> uses;
    uses.reserve(clocks.size());
    for (std::uint32_t module = 0; module < clocks.size(); ++module) {
        uses.push_back(UseFinder(hierarchy, clocks, module, uses).find());
    }
    return std::move(uses.back().clocks);
}

} // namespace kvr::netlistdb::analysis
