#include "design/Census.h"

#include "base/Interrupt.h"
#include "design/Design.h"

#include <deque>
#include <netlistdb/netlistdb.h>
#include <unordered_map>
#include <utility>

namespace kvr::netlistdb::tool {

namespace {

struct Definition {
    Contents contents;
    std::size_t module = 0; ///< place in Census::modules
    bool userDeclared = false;
    std::uint64_t instances = 0;
};

Contents contentsOf(IVDBNetlist &module)
{
    Contents contents;
    for (const bool fromBuses : {false, true}) {
        for (IVDBNet *net : module.getNets(fromBuses)) {
            contents.nets.add(net->isUserDeclared());
        }
    }
    for (IVDBNetBus *bus : module.getAllNetBus()) {
        contents.buses.add(bus->isUserDeclared());
    }
    contents.ports = module.getPorts().size();
    return contents;
}

bool drivesConstant(IVDBNetlist &module)
{
    return module.GetLibName() == "Constants";
}

/// Counts while a walk meets the instances.
class Counter {
  public:
    explicit Counter(Design &design) : m_design(design) {}

    void meet(IVDBInstance &instance, std::size_t depth)
    {
        const auto [found, isNew] = m_definitions.try_emplace(instance.getModule());
        if (isNew) {
            define(instance, found->second);
        }
        ++found->second.instances;
        if (m_census.levels.size() <= depth) {
            m_census.levels.resize(depth + 1);
        }
        m_census.levels[depth].add(found->second.userDeclared);
    }

    Census result()
    {
        for (const auto &[module, definition] : m_definitions) {
            m_census.instances.add(definition.userDeclared, definition.instances);
            m_census.modules[definition.module].instances += definition.instances;
            m_census.unfolded.add(definition.contents, definition.instances);
        }
        return std::move(m_census);
    }

  private:
    void define(IVDBInstance &instance, Definition &definition)
    {
        IVDBNetlist &netlist = *instance.getModule();
        definition.contents = contentsOf(netlist);
        definition.userDeclared = netlist.isUserDeclared();
        const auto [place, isNew] =
            m_modules.try_emplace({netlist.GetLibName(), netlist.getName()}, m_census.modules.size());
        definition.module = place->second;
        if (isNew) {
            m_census.modules.emplace_back();
            m_census.modules.back().name = netlist.getName();
            m_census.modules.back().userName = m_design.nameOf(netlist);
            m_census.modules.back().library = netlist.GetLibName();
            m_census.modules.back().userDeclared = definition.userDeclared;
            m_census.modules.back().constant = drivesConstant(netlist);
        }
        ModuleCensus &module = m_census.modules[definition.module];
        ++module.definitions;
        module.contents.add(definition.contents);
        m_census.definitions.add(definition.userDeclared);
        m_census.defined.add(definition.contents);
        for (IVDBInstance *child : instance.getSubInstances()) {
            if (!drivesConstant(*child->getModule())) {
                ++module.cells[child->getModule()->getName()];
            }
        }
    }

    Design &m_design;
    Census m_census;
    std::unordered_map<IVDBNetlist *, Definition> m_definitions;
    std::map<std::pair<std::string, std::string>, std::size_t> m_modules;
};

} // namespace

void Contents::add(const Contents &other, std::uint64_t times)
{
    nets.total += other.nets.total * times;
    nets.userDeclared += other.nets.userDeclared * times;
    buses.total += other.buses.total * times;
    buses.userDeclared += other.buses.userDeclared * times;
    ports += other.ports * times;
}

Census takeCensus(Design &design, const Interrupt &interrupt)
{
    // An owner with those of its children that are still to be met.
    struct Place {
        const std::vector<IVDBInstance *> &children;
        std::size_t next = 0;
    };
    Counter counter(design);
    counter.meet(design.root(), 0);
    std::deque<Place> way;
    way.push_back({design.root().getSubInstances()});
    while (!way.empty()) {
        interrupt.check();
        Place &place = way.back();
        if (place.next == place.children.size()) {
            way.pop_back();
            continue;
        }
        IVDBInstance &instance = *place.children[place.next++];
        counter.meet(instance, way.size());
        if (!instance.getSubInstances().empty()) {
            way.push_back({instance.getSubInstances()});
        }
    }
    return counter.result();
}

} // namespace kvr::netlistdb::tool
