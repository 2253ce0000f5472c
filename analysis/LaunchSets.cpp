#include "analysis/LaunchSets.h"

#include <algorithm>
#include <deque>
#include <utility>

namespace kvr::netlistdb::analysis {

namespace {

using Entries = SetTable::Entries;
using Ref = SetTable::Ref;

class LaunchFinder {
  public:
    LaunchFinder(const ModuleView &view, const SignalGraph &graph, ModuleSets &own)
        : m_view(view), m_graph(graph), m_own(own), m_table(own.launchTable), m_found(graph.nodeCount())
    {
        m_isRoot.resize(graph.netCount());
        for (std::uint32_t clock = 0; clock < view.ownClocks.roots.size(); ++clock) {
            m_isRoot[view.ownClocks.roots[clock]] = true;
        }
        m_place.assign(graph.nodeCount(), NONE);
    }

    void find(const Components &components)
    {
        for (std::uint32_t component = 0; component < components.count(); ++component) {
            const Span<std::uint32_t> nodes = components[component];
            if (nodes.size() > 1 || dependsOnItself(nodes[0])) {
                solveLoop(nodes);
            } else {
                m_found[nodes[0]] = behindEdges(nodes[0], seedOf(nodes[0]));
            }
        }
        m_own.launch.assign(m_found.begin(), m_found.begin() + m_graph.netCount());
    }

  private:
    bool dependsOnItself(std::uint32_t node) const
    {
        for (std::uint32_t edge = m_graph.firstEdge(node); edge < m_graph.endEdge(node); ++edge) {
            if (m_graph.before(edge) == node) {
                return true;
            }
        }
        return false;
    }

    Ref behindEdges(std::uint32_t node, Ref set)
    {
        for (std::uint32_t edge = m_graph.firstEdge(node); edge < m_graph.endEdge(node); ++edge) {
            set = m_table.merge(set, m_table.behind(m_found[m_graph.before(edge)], m_graph.cells(edge)));
        }
        return set;
    }

    /// The set of one atom at no distance; the cells of a bank of registers ask for the same one after the other.
    Ref single(Atom atom)
    {
        if (!(atom == m_lastAtom) || m_lastSingle.set == 0) {
            m_lastAtom = atom;
            m_lastSingle = m_table.intern(atom);
        }
        return m_lastSingle;
    }

    void addFlags(Ref &to, std::uint32_t flags)
    {
        if (flags != 0) {
            to = m_table.merge(to, m_table.internFlags(flags));
        }
    }

    /// What begins at a node.
    Ref seedOf(std::uint32_t node)
    {
        Ref seed;
        if (m_graph.isNet(node)) {
            addSources(node, seed);
        } else {
            const SignalGraph::Junction &junction = m_graph.junction(node);
            if (m_view.module.isSub(junction.cell)) {
                addInside(junction, seed);
            } else {
                addGroup(junction.cell, junction.group, seed);
            }
        }
        return seed;
    }

    void addSources(std::uint32_t net, Ref &seed)
    {
        const Span<NetSource> sources = m_view.module.sources[net];
        if (sources.empty()) {
            addFlags(seed, REACHED_BY_UNDRIVEN);
        }
        for (const NetSource source : sources) {
            if (!source.isPort()) {
                addPin(m_view.module.pinAt(source.position()), seed);
            } else if (m_view.isTop) {
                addFlags(seed, REACHED_BY_INPUT_PORT);
            } else {
                seed = m_table.merge(seed, m_table.intern(Atom(Atom::InputPort, source.port())));
            }
        }
        if (m_isRoot[net]) {
            seed = m_table.merge(seed, m_table.intern(Atom(Atom::Network, m_view.ownClocks.nets[net].number())));
        }
    }

    void addPin(CellPin pin, Ref &seed)
    {
        const ModuleGraph &module = m_view.module;
        if (module.isSub(pin.cell)) {
            const std::uint32_t inner = module.subs[module.subOf(pin.cell)].module;
            if (m_view.hierarchy.modules[inner].ports[pin.pin].net == NONE) {
                addFlags(seed, REACHED_BY_UNDRIVEN);
            }
            return;
        }
        const CellModel &model = m_view.hierarchy.models[module.modelOf(pin.cell)];
        const Span<std::uint32_t> launches = model.launches[pin.pin];
        const std::uint32_t group = model.pins[pin.pin].group;
        for (const std::uint32_t clock : launches) {
            const std::uint32_t net = module.netsOf(pin.cell)[model.clocks[clock].pin];
            if (net == NONE) {
                addFlags(seed, REACHED_BY_UNDRIVEN);
            } else {
                seed = m_table.merge(seed, single(m_view.clockAtom(net, Atom::Launched, Atom::LaunchedByPort)));
            }
        }
        if (model.kind == CellKind::Memory && launches.empty()) {
            for (const ModuleGraph::WrittenBy &write : module.writesOf(pin.cell)) {
                seed =
                    m_table.merge(seed, single(m_view.clockAtom(write.clockNet, Atom::Launched, Atom::LaunchedByPort)));
            }
        }
        if (group != NONE) {
            if (model.groupOutputs[group] < 2) {
                addGroup(pin.cell, group, seed);
            }
        } else if (launches.empty()) {
            addFlags(seed, model.isOpaque()                   ? REACHED_BY_BLACK_BOX
                           : model.kind == CellKind::Constant ? REACHED_BY_CONSTANT
                                                              : REACHED_BY_UNDRIVEN);
        }
    }

    /// What inputs of a cell add besides what comes from their nets.
    void addGroup(std::uint32_t cell, std::uint32_t group, Ref &seed)
    {
        const CellModel &model = m_view.hierarchy.models[m_view.module.modelOf(cell)];
        const Span<std::uint32_t> inputs = model.groups[group];
        const Span<std::uint32_t> nets = m_view.module.netsOf(cell);
        const bool isOpen =
            std::any_of(inputs.begin(), inputs.end(), [&](std::uint32_t pin) { return nets[pin] == NONE; });
        addFlags(seed, (inputs.empty() ? REACHED_BY_CONSTANT : 0U) | (isOpen ? REACHED_BY_UNDRIVEN : 0U) |
                           (model.isTransparent() ? REACHED_BY_LATCH : 0U));
    }

    /// What begins inside an instance.
    void addInside(const SignalGraph::Junction &junction, Ref &seed)
    {
        const ModuleGraph &module = m_view.module;
        const std::uint32_t sub = module.subOf(junction.cell);
        const std::uint32_t inner = module.subs[sub].module;
        const ModuleSets &sets = m_view.sets[inner];
        const Ref set = sets.launch[m_view.hierarchy.modules[inner].ports[junction.group].net];
        const Span<std::uint32_t> nets = module.netsOf(junction.cell);
        std::uint32_t flags = sets.launchTable.flags(set.set);
        Entries entries;
        for (const SetTable::Entry &entry : sets.launchTable[set.set]) {
            const std::uint32_t number = entry.atom.number();
            const std::uint32_t distance = set.distance + entry.distance;
            switch (entry.atom.kind()) {
            case Atom::LaunchedByPort:
                if (nets[number] != NONE) {
                    entries.push_back({m_view.clockAtom(nets[number], Atom::Launched, Atom::LaunchedByPort), distance});
                } else {
                    flags |= REACHED_BY_UNDRIVEN;
                }
                break;
            case Atom::InputPort:
                flags |= nets[number] == NONE ? REACHED_BY_UNDRIVEN : 0U;
                break;
            default:
                entries.push_back({Atom(entry.atom.kind(), m_view.clockOfSub(sub, number)), distance});
            }
        }
        seed = m_table.merge(seed, internUnsorted(entries));
        addFlags(seed, flags);
    }

    Ref internUnsorted(Entries &entries)
    {
        std::sort(entries.begin(), entries.end(), [](const SetTable::Entry &a, const SetTable::Entry &b) {
            return a.atom == b.atom ? a.distance < b.distance : a.atom < b.atom;
        });
        entries.erase(std::unique(entries.begin(), entries.end(),
                                  [](const SetTable::Entry &a, const SetTable::Entry &b) { return a.atom == b.atom; }),
                      entries.end());
        return m_table.intern(entries, 0);
    }

    /// The nodes of a loop have the same atoms, at distances of their own: these settle as in a breadth-first search.
    void solveLoop(Span<std::uint32_t> nodes)
    {
        std::vector<Entries> entries(nodes.size());
        std::uint32_t flags = REACHED_BY_LOOP;
        for (std::uint32_t place = 0; place < nodes.size(); ++place) {
            m_place[nodes[place]] = place;
        }
        std::vector<std::vector<std::pair<std::uint32_t, std::uint32_t>>> following(nodes.size());
        for (std::uint32_t place = 0; place < nodes.size(); ++place) {
            Ref outside = seedOf(nodes[place]);
            for (std::uint32_t edge = m_graph.firstEdge(nodes[place]); edge < m_graph.endEdge(nodes[place]); ++edge) {
                const std::uint32_t before = m_graph.before(edge);
                if (m_place[before] != NONE) {
                    following[m_place[before]].emplace_back(place, m_graph.cells(edge));
                } else {
                    outside = m_table.merge(outside, m_table.behind(m_found[before], m_graph.cells(edge)));
                }
            }
            flags |= m_table.flags(outside.set);
            for (const SetTable::Entry &entry : m_table[outside.set]) {
                entries[place].push_back({entry.atom, outside.distance + entry.distance});
            }
        }
        std::deque<std::uint32_t> changed;
        std::vector<bool> isWaiting(nodes.size());
        for (std::uint32_t place = 0; place < nodes.size(); ++place) {
            if (!entries[place].empty()) {
                changed.push_back(place);
                isWaiting[place] = true;
            }
        }
        Entries scratch;
        for (; !changed.empty(); changed.pop_front()) {
            const std::uint32_t place = changed.front();
            isWaiting[place] = false;
            const Entries from = entries[place];
            for (const auto &[next, cells] : following[place]) {
                if (mergeEntries(entries[next], from, cells, scratch) && !isWaiting[next]) {
                    changed.push_back(next);
                    isWaiting[next] = true;
                }
            }
        }
        for (std::uint32_t place = 0; place < nodes.size(); ++place) {
            m_found[nodes[place]] = m_table.intern(entries[place], flags);
            m_place[nodes[place]] = NONE;
        }
    }

    const ModuleView &m_view;
    const SignalGraph &m_graph;
    ModuleSets &m_own;
    SetTable &m_table;
    std::vector<Ref> m_found; ///< by node
    std::vector<bool> m_isRoot;
    std::vector<std::uint32_t> m_place; ///< by node: its place in the loop being solved
    Atom m_lastAtom;
    Ref m_lastSingle;
};

} // namespace

void findLaunchSets(const ModuleView &view, const SignalGraph &graph, const Components &components, ModuleSets &own)
{
    LaunchFinder(view, graph, own).find(components);
}

} // namespace kvr::netlistdb::analysis
