#include "analysis/crossings/PortBinding.h"

namespace kvr::netlistdb::analysis {

PortBinding BoundModules::top() const
{
    const std::size_t ports = m_design.hierarchy.modules[m_design.hierarchy.top()].ports.size();
    PortBinding binding;
    binding.launch.assign(ports, 0);
    binding.capture.assign(ports, 0);
    binding.clock.assign(ports, NONE);
    return binding;
}

PortBinding BoundModules::inside(std::uint32_t module, const PortBinding &outer, std::uint32_t sub) const
{
    const ModuleGraph &graph = m_design.hierarchy.modules[module];
    const ModuleGraph::SubInstance &instance = graph.subs[sub];
    const std::vector<ModuleGraph::ModulePort> &ports = m_design.hierarchy.modules[instance.module].ports;
    const Span<std::uint32_t> nets = graph.netsOf(instance.cell);
    PortBinding binding;
    binding.firstClock = outer.firstClock + m_design.clocks[module].firstOfSub[sub];
    binding.launch.reserve(ports.size());
    binding.capture.reserve(ports.size());
    binding.clock.reserve(ports.size());
    for (std::uint32_t port = 0; port < ports.size(); ++port) {
        const std::uint32_t net = nets[port];
        binding.launch.push_back(net != NONE && ports[port].isInput ? launch(module, outer, net) : 0);
        binding.capture.push_back(net != NONE && ports[port].isOutput ? capture(module, outer, net) : 0);
        binding.clock.push_back(net != NONE && ports[port].isInput ? clock(module, outer, net) : NONE);
    }
    return binding;
}

std::uint32_t BoundModules::launch(std::uint32_t module, const PortBinding &binding, std::uint32_t net) const
{
    const ModuleSets &sets = m_design.sets[module];
    const std::uint32_t set = sets.launch[net].set;
    std::vector<std::uint32_t> clocks;
    std::uint32_t flags = sets.launchTable.flags(set);
    for (const SetTable::Entry &entry : sets.launchTable[set]) {
        const std::uint32_t number = entry.atom.number();
        if (entry.atom.kind() == Atom::Launched) {
            clocks.push_back(binding.firstClock + number);
        } else if (entry.atom.kind() == Atom::LaunchedByPort && binding.clock[number] != NONE) {
            clocks.push_back(binding.clock[number]);
        } else if (entry.atom.kind() == Atom::InputPort) {
            const std::uint32_t outside = binding.launch[number];
            clocks.insert(clocks.end(), m_sets.clocks(outside).begin(), m_sets.clocks(outside).end());
            flags |= m_sets.flags(outside);
        }
    }
    return m_sets.intern(std::move(clocks), flags);
}

std::uint32_t BoundModules::capture(std::uint32_t module, const PortBinding &binding, std::uint32_t net) const
{
    const ModuleSets &sets = m_design.sets[module];
    std::vector<std::uint32_t> clocks;
    for (const SetTable::Entry &entry : sets.captureTable[sets.capture[net]]) {
        const std::uint32_t number = entry.atom.number();
        switch (entry.atom.kind()) {
        case Atom::Captured:
        case Atom::CapturedEnable:
        case Atom::CapturedSetReset:
            clocks.push_back(binding.firstClock + number);
            break;
        case Atom::CapturedByPort:
        case Atom::CapturedByPortEnable:
        case Atom::CapturedByPortSetReset:
            if (binding.clock[number] != NONE) {
                clocks.push_back(binding.clock[number]);
            }
            break;
        case Atom::OutputPort:
            clocks.insert(clocks.end(), m_sets.clocks(binding.capture[number]).begin(),
                          m_sets.clocks(binding.capture[number]).end());
            break;
        default:
            break;
        }
    }
    return m_sets.intern(std::move(clocks), 0);
}

std::uint32_t BoundModules::clock(std::uint32_t module, const PortBinding &binding, std::uint32_t net) const
{
    const ElectricalCode code = m_design.clocks[module].nets[net];
    switch (code.kind()) {
    case ElectricalCode::Clock:
        return binding.firstClock + code.number();
    case ElectricalCode::Port:
        return binding.clock[code.number()];
    default:
        return NONE;
    }
}

} // namespace kvr::netlistdb::analysis
