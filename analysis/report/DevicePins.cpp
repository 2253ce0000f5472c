#include "analysis/report/DevicePins.h"

#include "analysis/DeviceCells.h"
#include "analysis/Texts.h"
#include "analysis/crossings/Unfolding.h"

#include <DataBase.h>

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace kvr::netlistdb::analysis {

/// Walks the wires that begin at I/O cells and hard blocks.
class DevicePinFinder {
  public:
    DevicePinFinder(const DesignModel &design, DevicePins &found)
        : m_design(design), m_unfolding(design), m_found(found)
    {
    }

    void find()
    {
        const Hierarchy &hierarchy = m_design.hierarchy;
        for (std::uint32_t model = 0; model < hierarchy.models.size(); ++model) {
            m_kinds.push_back(kindOf(hierarchy.models[model]));
        }
        // Modules stand behind those that they instantiate.
        for (const ModuleGraph &module : hierarchy.modules) {
            bool holds = false;
            for (std::uint32_t cell = 0; cell < module.cellCount() && !holds; ++cell) {
                holds = module.isSub(cell) ? m_holds[module.subs[module.subOf(cell)].module]
                                           : m_kinds[module.modelOf(cell)] != Kind::Fabric;
            }
            m_holds.push_back(holds);
        }
        if (m_holds[hierarchy.top()]) {
            visit(Unfolding::TOP);
        }
    }

  private:
    enum class Kind : std::uint8_t { Fabric, Pad, HardBlock };
    struct Ends {
        std::vector<Node> nodes;
        std::vector<PinPlace> pads;
        std::vector<PinPlace> blocks;
        bool hasPort = false;
        bool hasFabric = false;
    };

    static Kind kindOf(const CellModel &model)
    {
        const char *const text = model.view != nullptr ? model.view->GetAttValue("NETLISTDB_CELL_KIND") : nullptr;
        const std::string_view kind = text != nullptr ? text : "";
        // An I/O cell with registers in it is no pad to the clocks.
        if (model.kind == CellKind::Pad || kind == "io") {
            return Kind::Pad;
        }
        return model.kind == CellKind::ClockGenerator || kind == "hard-block" ? Kind::HardBlock : Kind::Fabric;
    }

    Kind kindOf(const PinPlace &pin) const { return m_kinds[m_unfolding.graphOf(pin.context).modelOf(pin.cell)]; }

    void visit(std::uint32_t context)
    {
        const ModuleGraph &graph = m_unfolding.graphOf(context);
        for (std::uint32_t cell = 0; cell < graph.cellCount(); ++cell) {
            if (graph.isSub(cell)) {
                if (m_holds[graph.subs[graph.subOf(cell)].module]) {
                    visit(m_unfolding.inside(context, graph.subOf(cell)));
                }
                continue;
            }
            if (m_kinds[graph.modelOf(cell)] == Kind::Fabric) {
                continue;
            }
            const Span<std::uint32_t> nets = graph.netsOf(cell);
            for (std::uint32_t pin = 0; pin < nets.size(); ++pin) {
                if (nets[pin] != NONE && m_known.insert(m_unfolding.node(context, nets[pin])).second) {
                    take(walk(m_unfolding.node(context, nets[pin])));
                }
            }
        }
    }

    /// Everything that is one wire with @p start; stops where it meets a cell of the fabric.
    Ends walk(Node start)
    {
        Ends ends;
        std::unordered_set<Node> met{start};
        ends.nodes.push_back(start);
        const auto onNode = [&](Node node) {
            if (met.insert(node).second) {
                ends.nodes.push_back(node);
            }
        };
        const auto onPin = [&](const PinPlace &pin) {
            const Kind kind = kindOf(pin);
            ends.hasFabric = ends.hasFabric || kind == Kind::Fabric;
            if (kind != Kind::Fabric) {
                (kind == Kind::Pad ? ends.pads : ends.blocks).push_back(pin);
            }
        };
        const auto onPort = [&](std::uint32_t) { ends.hasPort = true; };
        for (std::size_t at = 0; at < ends.nodes.size() && !ends.hasFabric; ++at) {
            m_unfolding.forEachSource(ends.nodes[at], onPin, onNode, onPort);
            m_unfolding.forEachLoad(ends.nodes[at], onPin, onNode, onPort);
        }
        return ends;
    }

    void take(const Ends &ends)
    {
        m_known.insert(ends.nodes.begin(), ends.nodes.end());
        const bool isPadSide = ends.hasPort && !ends.pads.empty();
        // The fabric side of an I/O cell that leads to a hard block may have a wire.
        const bool isBlocks = ends.pads.empty() && ends.blocks.size() + (ends.hasPort ? 1 : 0) > 1;
        if (ends.hasFabric || (!isPadSide && !isBlocks)) {
            return;
        }
        const PinPlace &pin = isPadSide ? ends.pads.front() : ends.blocks.front();
        const Verific::Instance &cell = m_unfolding.instanceAt(pin.context, pin.cell);
        std::string path = m_design.pathOf(m_unfolding.pathTo(pin.context));
        path.append(path.empty() ? "" : "/").append(textOf(cell.Name()));
        const auto wire = static_cast<std::uint32_t>(m_found.m_wires.size());
        m_found.m_wires.push_back(
            {isPadSide, ends.hasPort, std::move(path), typeOf(cell), isPadSide ? insideOf(pin, ends) : std::string()});
        for (const Node node : ends.nodes) {
            const std::uint32_t context = m_unfolding.contextOf(node);
            m_found.m_nets[DevicePins::pathOf(m_unfolding.pathTo(context))].emplace(m_unfolding.netOf(node), wire);
        }
    }

    static std::string typeOf(const Verific::Instance &cell)
    {
        const std::string_view type = analysis::typeOf(cell.View());
        return std::string(!type.empty() ? type : deviceCellName(cell));
    }

    /// The net on the pin of the I/O cell that is electrically @p outside, or else that it reads or drives.
    std::string insideOf(const PinPlace &outside, const Ends &ends)
    {
        const CellModel &model = m_unfolding.model(outside);
        Node best = NONE;
        int bestRank = 4;
        for (std::uint32_t pin = 0; pin < model.pins.size(); ++pin) {
            const Node node = m_unfolding.nodeAt({outside.context, outside.cell, pin});
            if (node == NONE || std::find(ends.nodes.begin(), ends.nodes.end(), node) != ends.nodes.end()) {
                continue;
            }
            const int rank = model.pins[pin].passes == outside.pin   ? 0
                             : model.pins[outside.pin].passes == pin ? 1
                             : model.pins[pin].isOutput              ? 2
                                                                     : 3;
            if (rank < bestRank) {
                best = node;
                bestRank = rank;
            }
        }
        return best == NONE
                   ? std::string()
                   : m_design.nameOf({m_unfolding.pathTo(m_unfolding.contextOf(best)), m_unfolding.netOf(best)});
    }

    const DesignModel &m_design;
    Unfolding m_unfolding;
    DevicePins &m_found;
    std::vector<Kind> m_kinds; ///< by model
    std::vector<bool> m_holds; ///< by module: has I/O cells or hard blocks, here or below
    std::unordered_set<Node> m_known;
};

DevicePins::DevicePins(const DesignModel &design)
{
    DevicePinFinder(design, *this).find();
}

DevicePins::Path DevicePins::pathOf(const Context &context)
{
    Path path;
    for (std::size_t level = 1; level < context.size(); ++level) {
        path.push_back(context[level].sub);
    }
    return path;
}

const DevicePins::Wire *DevicePins::find(const Place &place) const
{
    if (m_nets.empty()) {
        return nullptr;
    }
    const auto nets = m_nets.find(pathOf(place.context));
    if (nets == m_nets.end()) {
        return nullptr;
    }
    const auto wire = nets->second.find(place.net);
    return wire != nets->second.end() ? &m_wires[wire->second] : nullptr;
}

} // namespace kvr::netlistdb::analysis
