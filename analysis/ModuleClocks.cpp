#include "analysis/ModuleClocks.h"

#include "analysis/ElectricalNets.h"
#include "analysis/SetTable.h"

#include <stdexcept>

namespace kvr::netlistdb::analysis {

namespace {

/// Finds out at which nets clocks begin: what registers are clocked by, below an instance or beside it.
class ClockFinder {
  public:
    ClockFinder(const Hierarchy &hierarchy, std::vector<ModuleClocks> &clocks)
        : m_hierarchy(hierarchy), m_clocks(clocks), m_isRoot(clocks.size()), m_clockOutputs(clocks.size())
    {
        for (std::uint32_t module = 0; module < clocks.size(); ++module) {
            const ModuleGraph &graph = hierarchy.modules[module];
            m_isRoot[module].resize(graph.netCount());
            m_clockOutputs[module].resize(graph.ports.size());
            clocks[module].clockPorts.resize(graph.ports.size());
        }
    }

    void find()
    {
        for (std::uint32_t module = 0; module < m_clocks.size(); ++module) {
            markPins(module);
        }
        for (std::uint32_t module = m_hierarchy.top() + 1; module-- > 0;) {
            markOutputs(module);
        }
        for (std::uint32_t module = 0; module < m_clocks.size(); ++module) {
            number(module);
        }
    }

  private:
    void mark(std::uint32_t module, std::uint32_t net)
    {
        if (net == NONE) {
            return;
        }
        const ElectricalCode code = m_clocks[module].nets[net];
        switch (code.kind()) {
        case ElectricalCode::Port:
            m_clocks[module].clockPorts[code.number()] = true;
            break;
        case ElectricalCode::Below: {
            const ModuleClocks::SubOutput &output = m_clocks[module].below[code.number()];
            m_clockOutputs[m_hierarchy.modules[module].subs[output.sub].module][output.port] = true;
            break;
        }
        default:
            m_isRoot[module][code.number()] = true;
        }
    }

    void markPins(std::uint32_t module)
    {
        const ModuleGraph &graph = m_hierarchy.modules[module];
        for (std::uint32_t cell = 0; cell < graph.cellCount(); ++cell) {
            if (graph.isSub(cell)) {
                continue;
            }
            const CellModel &model = m_hierarchy.models[graph.modelOf(cell)];
            for (const CellModel::ClockPin &clock : model.clocks) {
                mark(module, graph.netsOf(cell)[clock.pin]);
            }
            if (model.kind == CellKind::ClockGenerator) {
                for (std::uint32_t pin = 0; pin < model.pins.size(); ++pin) {
                    if (model.pins[pin].role == PinRole::Reference) {
                        mark(module, graph.netsOf(cell)[pin]);
                    }
                }
            }
        }
        for (const ModuleGraph::SubInstance &sub : graph.subs) {
            const std::vector<bool> &used = m_clocks[sub.module].clockPorts;
            for (std::uint32_t port = 0; port < used.size(); ++port) {
                if (used[port]) {
                    mark(module, graph.netsOf(sub.cell)[port]);
                }
            }
        }
    }

    /// Some module that instantiates this one uses these outputs as clocks.
    void markOutputs(std::uint32_t module)
    {
        for (std::uint32_t port = 0; port < m_clockOutputs[module].size(); ++port) {
            if (m_clockOutputs[module][port]) {
                mark(module, m_hierarchy.modules[module].ports[port].net);
            }
        }
    }

    void number(std::uint32_t module)
    {
        const ModuleGraph &graph = m_hierarchy.modules[module];
        ModuleClocks &own = m_clocks[module];
        for (std::uint32_t net = 0; net < graph.netCount(); ++net) {
            if (m_isRoot[module][net]) {
                own.roots.push_back(net);
            }
        }
        std::uint64_t count = own.roots.size();
        own.firstOfSub.reserve(graph.subs.size() + 1);
        for (const ModuleGraph::SubInstance &sub : graph.subs) {
            own.firstOfSub.push_back(static_cast<std::uint32_t>(count));
            count += m_clocks[sub.module].count();
            if (count >= Atom::MOST) {
                throw std::length_error("ClockMap: the design has more than 2^28 clocks");
            }
        }
        own.firstOfSub.push_back(static_cast<std::uint32_t>(count));
        std::vector<std::uint32_t> ofRoot(graph.netCount(), NONE);
        for (std::uint32_t clock = 0; clock < own.roots.size(); ++clock) {
            ofRoot[own.roots[clock]] = clock;
        }
        for (ElectricalCode &code : own.nets) {
            const std::uint32_t clock = numberOf(graph, own, code, ofRoot);
            if (clock != NONE) {
                code = {ElectricalCode::Clock, clock, code.isInverted()};
            }
        }
    }

    std::uint32_t numberOf(const ModuleGraph &graph, const ModuleClocks &own, ElectricalCode code,
                           const std::vector<std::uint32_t> &ofRoot) const
    {
        if (code.kind() == ElectricalCode::Net) {
            return ofRoot[code.number()];
        }
        if (code.kind() != ElectricalCode::Below) {
            return NONE;
        }
        const ModuleClocks::SubOutput &output = own.below[code.number()];
        const std::uint32_t inner = graph.subs[output.sub].module;
        const ElectricalCode below = m_clocks[inner].nets[m_hierarchy.modules[inner].ports[output.port].net];
        return below.kind() == ElectricalCode::Clock ? own.firstOfSub[output.sub] + below.number() : NONE;
    }

    const Hierarchy &m_hierarchy;
    std::vector<ModuleClocks> &m_clocks;
    std::vector<std::vector<bool>> m_isRoot;       ///< by module and net
    std::vector<std::vector<bool>> m_clockOutputs; ///< by module and port
};

} // namespace

std::vector<ModuleClocks> findClocks(const Hierarchy &hierarchy)
{
    std::vector<ModuleClocks> clocks(hierarchy.modules.size());
    for (std::uint32_t module = 0; module < clocks.size(); ++module) {
        followNets(hierarchy, module, module == hierarchy.top(), clocks);
    }
    ClockFinder(hierarchy, clocks).find();
    return clocks;
}

} // namespace kvr::netlistdb::analysis
