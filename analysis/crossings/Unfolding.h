#pragma once

#include "analysis/crossings/PortBinding.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace Verific {
class Instance;
class Net;
} // namespace Verific

namespace kvr::netlistdb::analysis {

/// One net in one instance.
using Node = std::uint32_t;

/// One pin of a leaf cell in one instance.
struct PinPlace {
    std::uint32_t context;
    std::uint32_t cell;
    std::uint32_t pin;

    friend bool operator==(const PinPlace &a, const PinPlace &b)
    {
        return a.context == b.context && a.cell == b.cell && a.pin == b.pin;
    }
    friend bool operator<(const PinPlace &a, const PinPlace &b)
    {
        return a.context != b.context ? a.context < b.context : a.cell != b.cell ? a.cell < b.cell : a.pin < b.pin;
    }
};

/// Instances of modules, unfolded when they are first asked for. Clocks are numbered as in the top.
class Unfolding {
  public:
    explicit Unfolding(const DesignModel &design);

    static constexpr std::uint32_t TOP = 0;
    /// The instance @p sub of the module in @p context.
    std::uint32_t inside(std::uint32_t context, std::uint32_t sub);
    std::uint32_t outside(std::uint32_t context) const { return m_contexts[context].parent; }
    std::uint32_t moduleOf(std::uint32_t context) const { return m_contexts[context].module; }
    /// Cell of the outer module that is this instance.
    std::uint32_t cellOf(std::uint32_t context) const;
    const PortBinding &bindingOf(std::uint32_t context) const { return m_contexts[context].binding; }
    const ModuleGraph &graphOf(std::uint32_t context) const
    {
        return m_design.hierarchy.modules[m_contexts[context].module];
    }
    std::uint32_t contextCount() const { return static_cast<std::uint32_t>(m_contexts.size()); }

    Node node(std::uint32_t context, std::uint32_t net) const { return m_contexts[context].firstNode + net; }
    std::uint32_t contextOf(Node node) const;
    std::uint32_t netOf(Node node) const { return node - m_contexts[contextOf(node)].firstNode; }
    Node nodeCount() const { return m_nodes; }

    const BoundModules &modules() const { return m_modules; }
    const ClockSets &sets() const { return m_sets; }
    const CellModel &model(const PinPlace &pin) const { return m_modules.model(moduleOf(pin.context), pin.cell); }
    const CellModel &model(std::uint32_t context, std::uint32_t cell) const
    {
        return m_modules.model(moduleOf(context), cell);
    }
    /// Node on a pin, or NONE.
    Node nodeAt(const PinPlace &pin) const
    {
        const std::uint32_t net = graphOf(pin.context).netsOf(pin.cell)[pin.pin];
        return net != NONE ? node(pin.context, net) : NONE;
    }
    std::uint32_t launchOf(Node node);
    std::uint32_t captureOf(Node node);
    /// The clock that a node is electrically, or NONE.
    std::uint32_t clockOf(Node node) const;
    /// The clock on a pin, or NONE.
    std::uint32_t clockAt(const PinPlace &pin) const
    {
        const Node node = nodeAt(pin);
        return node != NONE ? clockOf(node) : NONE;
    }

    /// Calls @p onPin(PinPlace), @p onNode(Node), @p onPort(port of the top) for all that drives a net.
    template <typename OnPin, typename OnNode, typename OnPort>
    void forEachSource(Node node, OnPin onPin, OnNode onNode, OnPort onPort);
    /// The same for all that a net feeds.
    template <typename OnPin, typename OnNode, typename OnPort>
    void forEachLoad(Node node, OnPin onPin, OnNode onNode, OnPort onPort);

    const Verific::Instance &instanceAt(std::uint32_t context, std::uint32_t cell);
    const Verific::Net &netAt(Node node);
    /// The item of a net, or null.
    IVDBNet *itemOf(Node node) const;
    /// The way from the top down.
    Context pathTo(std::uint32_t context) const;
    const DesignModel &design() const { return m_design; }

  private:
    struct Occurrence {
        std::uint32_t parent;
        std::uint32_t sub; ///< in the module of the parent
        std::uint32_t module;
        Node firstNode;
        PortBinding binding;
        std::vector<std::uint32_t> children; ///< by instance of a module, NONE until it is asked for
        std::vector<std::uint32_t> launch;   ///< by set of the module; NONE until it is asked for
        std::vector<std::uint32_t> capture;
    };
    /// What only modules need that are unfolded.
    struct ModuleDetails {
        Lists<CellPin> loads;                         ///< by net: input pins of leaf cells and instances
        Lists<std::uint32_t> outputs;                 ///< by net: ports that show it outside
        std::vector<const Verific::Instance *> cells; ///< filled when first asked for
        std::vector<const Verific::Net *> nets;       ///< likewise
        bool hasLoads = false;
    };

    std::uint32_t addContext(std::uint32_t parent, std::uint32_t sub, std::uint32_t module, PortBinding binding);
    const ModuleDetails &loadsOf(std::uint32_t module);

    const DesignModel &m_design;
    ClockSets m_sets;
    BoundModules m_modules;
    std::vector<Occurrence> m_contexts;
    std::vector<ModuleDetails> m_details; ///< by module
    Node m_nodes = 0;
};

template <typename OnPin, typename OnNode, typename OnPort>
void Unfolding::forEachSource(Node node, OnPin onPin, OnNode onNode, OnPort onPort)
{
    const std::uint32_t context = contextOf(node);
    const ModuleGraph &graph = graphOf(context);
    for (const NetSource source : graph.sources[node - m_contexts[context].firstNode]) {
        if (source.isPort()) {
            if (context == TOP) {
                onPort(source.port());
                continue;
            }
            const std::uint32_t parent = outside(context);
            const std::uint32_t net = graphOf(parent).netsOf(cellOf(context))[source.port()];
            if (net != NONE) {
                onNode(this->node(parent, net));
            }
            continue;
        }
        const CellPin pin = graph.pinAt(source.position());
        if (!graph.isSub(pin.cell)) {
            onPin(PinPlace{context, pin.cell, pin.pin});
            continue;
        }
        const std::uint32_t child = inside(context, graph.subOf(pin.cell));
        const std::uint32_t net = graphOf(child).ports[pin.pin].net;
        if (net != NONE) {
            onNode(this->node(child, net));
        }
    }
}

template <typename OnPin, typename OnNode, typename OnPort>
void Unfolding::forEachLoad(Node node, OnPin onPin, OnNode onNode, OnPort onPort)
{
    const std::uint32_t context = contextOf(node);
    const ModuleGraph &graph = graphOf(context);
    const std::uint32_t ownNet = node - m_contexts[context].firstNode;
    const ModuleDetails &details = loadsOf(moduleOf(context));
    for (const CellPin pin : details.loads[ownNet]) {
        if (!graph.isSub(pin.cell)) {
            onPin(PinPlace{context, pin.cell, pin.pin});
            continue;
        }
        const std::uint32_t child = inside(context, graph.subOf(pin.cell));
        const std::uint32_t net = graphOf(child).ports[pin.pin].net;
        if (net != NONE) {
            onNode(this->node(child, net));
        }
    }
    for (const std::uint32_t port : details.outputs[ownNet]) {
        if (context == TOP) {
            onPort(port);
            continue;
        }
        const std::uint32_t net = graphOf(outside(context)).netsOf(cellOf(context))[port];
        if (net != NONE) {
            onNode(this->node(outside(context), net));
        }
    }
}

} // namespace kvr::netlistdb::analysis
