#include "analysis/crossings/Unfolding.h"

#include <DataBase.h>

#include <stdexcept>

namespace kvr::netlistdb::analysis {

Unfolding::Unfolding(const DesignModel &design)
    : m_design(design), m_modules(design, m_sets), m_details(design.hierarchy.modules.size())
{
    addContext(NONE, NONE, design.hierarchy.top(), m_modules.top());
}

std::uint32_t Unfolding::addContext(std::uint32_t parent, std::uint32_t sub, std::uint32_t module, PortBinding binding)
{
    const ModuleGraph &graph = m_design.hierarchy.modules[module];
    if (graph.netCount() >= NONE - m_nodes) {
        throw std::length_error("Crossings: the instances between clocks have more than 2^32 nets");
    }
    m_contexts.push_back({parent, sub, module, m_nodes, std::move(binding), {}, {}, {}});
    m_nodes += graph.netCount();
    return contextCount() - 1;
}

std::uint32_t Unfolding::inside(std::uint32_t context, std::uint32_t sub)
{
    const ModuleGraph &graph = graphOf(context);
    if (m_contexts[context].children.empty()) {
        m_contexts[context].children.assign(graph.subs.size(), NONE);
    }
    const std::uint32_t known = m_contexts[context].children[sub];
    if (known != NONE) {
        return known;
    }
    PortBinding binding = m_modules.inside(moduleOf(context), bindingOf(context), sub);
    const std::uint32_t child = addContext(context, sub, graph.subs[sub].module, std::move(binding));
    m_contexts[context].children[sub] = child;
    return child;
}

std::uint32_t Unfolding::cellOf(std::uint32_t context) const
{
    return graphOf(m_contexts[context].parent).subs[m_contexts[context].sub].cell;
}

std::uint32_t Unfolding::contextOf(Node node) const
{
    if (m_contexts.size() == 1) {
        return TOP;
    }
    const auto behind =
        std::upper_bound(m_contexts.begin(), m_contexts.end(), node,
                         [](Node wanted, const Occurrence &context) { return wanted < context.firstNode; });
    return static_cast<std::uint32_t>(behind - m_contexts.begin()) - 1;
}

std::uint32_t Unfolding::launchOf(Node node)
{
    Occurrence &context = m_contexts[contextOf(node)];
    const ModuleSets &sets = m_design.sets[context.module];
    if (context.launch.empty()) {
        context.launch.assign(sets.launchTable.size(), NONE);
    }
    const std::uint32_t net = node - context.firstNode;
    std::uint32_t &known = context.launch[sets.launch[net].set];
    if (known == NONE) {
        known = m_modules.launch(context.module, context.binding, net);
    }
    return known;
}

std::uint32_t Unfolding::captureOf(Node node)
{
    Occurrence &context = m_contexts[contextOf(node)];
    const ModuleSets &sets = m_design.sets[context.module];
    if (context.capture.empty()) {
        context.capture.assign(sets.captureTable.size(), NONE);
    }
    const std::uint32_t net = node - context.firstNode;
    std::uint32_t &known = context.capture[sets.capture[net]];
    if (known == NONE) {
        known = m_modules.capture(context.module, context.binding, net);
    }
    return known;
}

std::uint32_t Unfolding::clockOf(Node node) const
{
    const Occurrence &context = m_contexts[contextOf(node)];
    return m_modules.clock(context.module, context.binding, node - context.firstNode);
}

IVDBNet *Unfolding::itemOf(Node node) const
{
    const Occurrence &context = m_contexts[contextOf(node)];
    const ModuleGraph &graph = m_design.hierarchy.modules[context.module];
    return m_design.hierarchy.items[graph.firstNet + (node - context.firstNode)];
}

Context Unfolding::pathTo(std::uint32_t context) const
{
    Context path;
    for (; context != NONE; context = m_contexts[context].parent) {
        const Occurrence &at = m_contexts[context];
        path.push_back({at.module, at.sub, at.binding.firstClock});
    }
    std::reverse(path.begin(), path.end());
    return path;
}

const Unfolding::ModuleDetails &Unfolding::loadsOf(std::uint32_t module)
{
    ModuleDetails &details = m_details[module];
    if (details.hasLoads) {
        return details;
    }
    details.hasLoads = true;
    const ModuleGraph &graph = m_design.hierarchy.modules[module];
    std::vector<std::uint32_t> next(graph.netCount() + 1, 0);
    const auto eachInput = [&](auto visit) {
        for (std::uint32_t cell = 0; cell < graph.cellCount(); ++cell) {
            const Span<std::uint32_t> nets = graph.netsOf(cell);
            const CellModel *const model = graph.isSub(cell) ? nullptr : &m_modules.model(module, cell);
            const std::vector<ModuleGraph::ModulePort> *const ports =
                model == nullptr ? &m_design.hierarchy.modules[graph.subs[graph.subOf(cell)].module].ports : nullptr;
            for (std::uint32_t pin = 0; pin < nets.size(); ++pin) {
                if (nets[pin] != NONE && (model != nullptr ? model->pins[pin].isInput : (*ports)[pin].isInput)) {
                    visit(nets[pin], CellPin{cell, pin});
                }
            }
        }
    };
    eachInput([&](std::uint32_t net, CellPin) { ++next[net + 1]; });
    for (std::size_t net = 0; net < graph.netCount(); ++net) {
        next[net + 1] += next[net];
    }
    std::vector<CellPin> sorted(next.back());
    eachInput([&](std::uint32_t net, CellPin pin) { sorted[next[net]++] = pin; });
    std::size_t at = 0;
    for (std::uint32_t net = 0; net < graph.netCount(); ++net) {
        for (; at < next[net]; ++at) {
            details.loads.add(sorted[at]);
        }
        details.loads.endList();
    }
    std::vector<std::pair<std::uint32_t, std::uint32_t>> outputs;
    for (std::uint32_t port = 0; port < graph.ports.size(); ++port) {
        if (graph.ports[port].isOutput && graph.ports[port].net != NONE) {
            outputs.emplace_back(graph.ports[port].net, port);
        }
    }
    std::sort(outputs.begin(), outputs.end());
    for (const auto &[net, port] : outputs) {
        details.outputs.pad(net);
        details.outputs.add(port);
    }
    details.outputs.pad(graph.netCount());
    return details;
}

const Verific::Instance &Unfolding::instanceAt(std::uint32_t context, std::uint32_t cell)
{
    const std::uint32_t module = moduleOf(context);
    std::vector<const Verific::Instance *> &cells = m_details[module].cells;
    if (cells.empty()) {
        Verific::MapIter instances;
        const Verific::Instance *instance = nullptr;
        FOREACH_INSTANCE_OF_NETLIST (m_design.hierarchy.modules[module].netlist, instances, instance) {
            cells.push_back(instance);
        }
    }
    return *cells[cell];
}

const Verific::Net &Unfolding::netAt(Node node)
{
    const std::uint32_t context = contextOf(node);
    const std::uint32_t module = moduleOf(context);
    std::vector<const Verific::Net *> &nets = m_details[module].nets;
    if (nets.empty()) {
        Verific::MapIter all;
        const Verific::Net *net = nullptr;
        FOREACH_NET_OF_NETLIST (m_design.hierarchy.modules[module].netlist, all, net) {
            nets.push_back(net);
        }
    }
    return *nets[node - m_contexts[context].firstNode];
}

} // namespace kvr::netlistdb::analysis
