#include "analysis/CaptureSets.h"

#include <algorithm>
#include <unordered_map>

namespace kvr::netlistdb::analysis {

namespace {

class CaptureFinder {
  public:
    CaptureFinder(const ModuleView &view, const SignalGraph &graph, ModuleSets &own)
        : m_view(view), m_graph(graph), m_own(own), m_table(own.captureTable), m_found(graph.nodeCount(), 0)
    {
    }

    void find(const Components &components)
    {
        addEnds();
        for (std::uint32_t component = components.count(); component-- > 0;) {
            const Span<std::uint32_t> nodes = components[component];
            if (nodes.size() > 1) {
                std::uint32_t all = 0;
                for (const std::uint32_t node : nodes) {
                    all = merged(all, m_found[node]);
                }
                for (const std::uint32_t node : nodes) {
                    m_found[node] = all;
                }
            }
            for (const std::uint32_t node : nodes) {
                for (std::uint32_t edge = m_graph.firstEdge(node); edge < m_graph.endEdge(node); ++edge) {
                    std::uint32_t &before = m_found[m_graph.before(edge)];
                    before = merged(before, m_found[node]);
                }
            }
        }
        m_own.capture.assign(m_found.begin(), m_found.begin() + m_graph.netCount());
    }

  private:
    std::uint32_t merged(std::uint32_t a, std::uint32_t b)
    {
        return a == b || b == 0 ? a : m_table.merge({a, 0}, {b, 0}).set;
    }

    void add(std::uint32_t net, std::uint32_t set)
    {
        if (net != NONE) {
            m_found[net] = merged(m_found[net], set);
        }
    }

    void addFlags(std::uint32_t net, std::uint32_t flags)
    {
        if (net != NONE && flags != 0) {
            add(net, m_table.internFlags(flags).set);
        }
    }

    /// The set of one atom; the cells of a bank of registers ask for the same ones one after the other.
    std::uint32_t single(Atom atom)
    {
        Single &known = m_singles[atom.kind() & 3U];
        if (!(known.atom == atom) || known.set == 0) {
            known = {atom, m_table.intern(atom).set};
        }
        return known.set;
    }

    void addEnds()
    {
        const ModuleGraph &module = m_view.module;
        for (std::uint32_t port = 0; port < module.ports.size(); ++port) {
            if (module.ports[port].isOutput && module.ports[port].net != NONE) {
                if (m_view.isTop) {
                    addFlags(module.ports[port].net, REACHES_OUTPUT_PORT);
                } else {
                    add(module.ports[port].net, m_table.intern(Atom(Atom::OutputPort, port)).set);
                }
            }
        }
        for (std::uint32_t cell = 0; cell < module.cellCount(); ++cell) {
            if (module.isSub(cell)) {
                addInside(cell);
            } else {
                addCell(cell);
            }
        }
    }

    void addCell(std::uint32_t cell)
    {
        const CellModel &model = m_view.hierarchy.models[m_view.module.modelOf(cell)];
        const Span<std::uint32_t> nets = m_view.module.netsOf(cell);
        if (model.isTransparent()) {
            for (const CellModel::Pin &pin : model.pins) {
                if (pin.group != NONE) {
                    for (const std::uint32_t input : model.groups[pin.group]) {
                        addFlags(nets[input], REACHES_LATCH);
                    }
                }
            }
        }
        if (!model.isRegister() && !model.isOpaque()) {
            return;
        }
        for (std::uint32_t pin = 0; pin < model.pins.size(); ++pin) {
            if (!model.pins[pin].isInput || nets[pin] == NONE) {
                continue;
            }
            if (model.pins[pin].role == PinRole::Clock || model.pins[pin].role == PinRole::Reference) {
                addFlags(nets[pin], REACHES_CLOCK_PIN);
            }
            if (model.isOpaque() && model.captures[pin].empty() && model.pins[pin].role != PinRole::Clock) {
                addFlags(nets[pin], REACHES_BLACK_BOX);
            }
            addCaptures(model, pin, nets);
        }
    }

    void addCaptures(const CellModel &model, std::uint32_t pin, Span<std::uint32_t> nets)
    {
        const std::uint32_t use = useOf(model.pins[pin].role);
        for (const std::uint32_t clock : model.captures[pin]) {
            const std::uint32_t net = nets[model.clocks[clock].pin];
            if (net != NONE) {
                add(nets[pin], single(m_view.clockAtom(net, static_cast<Atom::Kind>(Atom::Captured + use),
                                                       static_cast<Atom::Kind>(Atom::CapturedByPort + use))));
            }
        }
    }

    /// How much further than the kind for data the kind of atom for a role is.
    static std::uint32_t useOf(PinRole role)
    {
        switch (captureRoleOf(role)) {
        case CAPTURE_ENABLE:
            return 1;
        case CAPTURE_SET_RESET:
            return 2;
        default:
            return 0;
        }
    }

    void addInside(std::uint32_t cell)
    {
        const ModuleGraph &module = m_view.module;
        const std::uint32_t sub = module.subOf(cell);
        const std::uint32_t inner = module.subs[sub].module;
        const ModuleGraph &inside = m_view.hierarchy.modules[inner];
        const Span<std::uint32_t> nets = module.netsOf(cell);
        std::unordered_map<std::uint32_t, std::uint32_t> known;
        for (std::uint32_t port = 0; port < inside.ports.size(); ++port) {
            if (!inside.ports[port].isInput || inside.ports[port].net == NONE || nets[port] == NONE) {
                continue;
            }
            const std::uint32_t set = m_view.sets[inner].capture[inside.ports[port].net];
            const auto [found, isNew] = known.try_emplace(set, 0);
            if (isNew) {
                found->second = outside(sub, m_view.sets[inner].captureTable, set, nets);
            }
            add(nets[port], found->second);
        }
    }

    /// What registers inside an instance capture, in the terms of this module.
    std::uint32_t outside(std::uint32_t sub, const SetTable &table, std::uint32_t set, Span<std::uint32_t> nets)
    {
        SetTable::Entries entries;
        for (const SetTable::Entry &entry : table[set]) {
            const std::uint32_t number = entry.atom.number();
            const Atom::Kind kind = entry.atom.kind();
            if (kind >= Atom::Captured && kind < Atom::CapturedByPort) {
                entries.push_back({Atom(kind, m_view.clockOfSub(sub, number)), 0});
            } else if (kind != Atom::OutputPort && nets[number] != NONE) {
                const auto own = static_cast<Atom::Kind>(kind - Atom::CapturedByPort + Atom::Captured);
                entries.push_back({m_view.clockAtom(nets[number], own, kind), 0});
            }
        }
        std::sort(entries.begin(), entries.end(),
                  [](const SetTable::Entry &a, const SetTable::Entry &b) { return a.atom < b.atom; });
        entries.erase(std::unique(entries.begin(), entries.end()), entries.end());
        return m_table.intern(entries, table.flags(set)).set;
    }

    struct Single {
        Atom atom;
        std::uint32_t set = 0;
    };

    const ModuleView &m_view;
    const SignalGraph &m_graph;
    ModuleSets &m_own;
    SetTable &m_table;
    std::vector<std::uint32_t> m_found; ///< by node
    Single m_singles[4];
};

} // namespace

void findCaptureSets(const ModuleView &view, const SignalGraph &graph, const Components &components, ModuleSets &own)
{
    CaptureFinder(view, graph, own).find(components);
}

} // namespace kvr::netlistdb::analysis
