#include "design/NetPins.h"

#include "design/Design.h"

#include <DataBase.h>
#include <analysis/ClockMapState.h>
#include <deque>
#include <map>
#include <netlistdb/netlistdb.h>
#include <set>
#include <utility>

namespace kvr::netlistdb::tool {

namespace {

/// Pins of one net that are looked at. A clock of a million registers takes no longer than a page may.
constexpr std::uint64_t MOST_VISITED = 20'000;

std::string nameOf(const Verific::DesignObj *object)
{
    const char *const name = object != nullptr ? object->Name() : nullptr;
    return name != nullptr ? name : "";
}

/// Walks the unfolded net, level by level from where it begins.
class Walk {
  public:
    Walk(Design &design, const std::unordered_set<const Verific::Netlist *> &modules, IVDBInstance &instance,
         std::size_t most)
        : m_design(design), m_modules(modules), m_most(most)
    {
        const std::string path = instance.getPath();
        m_levels.push_back({nullptr, nullptr, &instance, path.empty() ? path : path + "/"});
    }

    NetPins pinsOf(const Verific::Net &net)
    {
        reach(m_levels.front(), &net);
        while (!m_waiting.empty() && m_visited < MOST_VISITED) {
            const auto [level, next] = m_waiting.front();
            m_waiting.pop_front();
            visit(*level, *next);
        }
        m_pins.isWhole = m_waiting.empty() && m_visited < MOST_VISITED;
        return std::move(m_pins);
    }

  private:
    /// An occurrence that the net runs through.
    struct Level {
        Level *above;                      ///< null until the walk gets there, and at the top
        const Verific::Instance *instance; ///< in the level above; null like that
        IVDBInstance *item;                ///< of where the walk began and what is above; null below
        std::string prefix;                ///< in front of the names of its cells
    };

    void reach(Level &level, const Verific::Net *net)
    {
        if (net != nullptr && m_known.emplace(&level, net).second) {
            m_waiting.emplace_back(&level, net);
        }
    }

    void visit(Level &level, const Verific::Net &net)
    {
        Verific::SetIter ports;
        const Verific::Port *port = nullptr;
        FOREACH_PORT_OF_NET (&net, ports, port) {
            visitPort(level, *port);
        }
        Verific::SetIter refs;
        Verific::PortRef *ref = nullptr;
        FOREACH_PORTREF_OF_NET (&net, refs, ref) {
            if (++m_visited > MOST_VISITED) {
                return;
            }
            visitPin(level, *ref);
        }
    }

    void visitPort(Level &level, const Verific::Port &port)
    {
        if (level.above == nullptr && level.item != nullptr && level.item->getOwnerInstance() != nullptr) {
            IVDBInstance &owner = *level.item->getOwnerInstance();
            const std::string path = owner.getPath();
            level.instance = m_design.sourceOf(*level.item);
            level.above = &m_levels.emplace_back(Level{nullptr, nullptr, &owner, path.empty() ? path : path + "/"});
            m_below.emplace(std::pair(level.above, level.instance), &level);
        }
        if (level.above != nullptr) {
            reach(*level.above, level.instance != nullptr ? level.instance->GetNet(&port) : nullptr);
        } else {
            add({nameOf(&port), "", ""}, port.IsInput() != 0, port.IsOutput() != 0);
        }
    }

    void visitPin(Level &level, const Verific::PortRef &ref)
    {
        const Verific::Instance *const instance = ref.GetInst();
        const Verific::Port *const port = ref.GetPort();
        const Verific::Netlist *const view = instance->View();
        if (m_modules.count(view) == 0) {
            add({level.prefix + nameOf(instance), view != nullptr ? nameOf(view->Owner()) : "", nameOf(port)},
                port->IsOutput() != 0, port->IsInput() != 0);
            return;
        }
        Level *&below = m_below[{&level, instance}];
        if (below == nullptr) {
            below = &m_levels.emplace_back(Level{&level, instance, nullptr, level.prefix + nameOf(instance) + "/"});
        }
        reach(*below, port->GetNet());
    }

    /// Inout pins are both.
    void add(NetPin pin, bool drives, bool loads)
    {
        const bool isBoth = drives == loads;
        if ((drives || isBoth) && m_pins.drivers.size() < m_most) {
            m_pins.drivers.push_back(pin);
        }
        if (loads || isBoth) {
            ++m_pins.loadCount;
            if (m_pins.loads.size() < m_most) {
                m_pins.loads.push_back(std::move(pin));
            }
        }
    }

    Design &m_design;
    const std::unordered_set<const Verific::Netlist *> &m_modules;
    std::size_t m_most;
    std::deque<Level> m_levels;
    std::map<std::pair<const Level *, const Verific::Instance *>, Level *> m_below;
    std::set<std::pair<const Level *, const Verific::Net *>> m_known;
    std::deque<std::pair<Level *, const Verific::Net *>> m_waiting;
    std::uint64_t m_visited = 0;
    NetPins m_pins;
};

} // namespace

NetPinFinder::NetPinFinder(Design &design) : m_design(design)
{
    for (const analysis::ModuleGraph &module : design.clocks().state().design.hierarchy.modules) {
        m_modules.insert(module.netlist);
    }
}

NetPins NetPinFinder::pinsOf(IVDBInstance &instance, const IVDBNet &net, std::size_t most) const
{
    const auto *const source = dynamic_cast<const Verific::Net *>(m_design.names(*instance.getModule()).sourceOf(net));
    return source != nullptr ? Walk(m_design, m_modules, instance, most).pinsOf(*source) : NetPins();
}

} // namespace kvr::netlistdb::tool
