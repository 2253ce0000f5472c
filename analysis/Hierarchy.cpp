#include "analysis/Hierarchy.h"

#include "analysis/ModuleReader.h"

#include <DataBase.h>

#include <utility>

namespace kvr::netlistdb::analysis {

namespace {

/// The modules below @p top and itself, each behind those that it instantiates. Without recursion: a chain of modules
/// may be long.
std::vector<const Verific::Netlist *> modulesBelow(ModuleReader &reader, const Verific::Netlist &top)
{
    std::vector<const Verific::Netlist *> order;
    ModuleReader::ModuleNumbers seen;
    std::vector<std::pair<const Verific::Netlist *, Verific::MapIter>> open;
    const auto enter = [&](const Verific::Netlist &netlist) {
        if (seen.emplace(&netlist, 0).second) {
            Verific::MapIter instances;
            instances.First(netlist.GetInsts());
            open.emplace_back(&netlist, instances);
        }
    };
    enter(top);
    while (!open.empty()) {
        void *instance = nullptr;
        if (open.back().second.Next(nullptr, &instance) == 0) {
            order.push_back(open.back().first);
            open.pop_back();
        } else if (const auto *const known = static_cast<const Verific::Instance *>(instance);
                   reader.isModule(*known)) {
            enter(*known->View());
        }
    }
    return order;
}

} // namespace

Hierarchy::Hierarchy(const DesignDatabase &database, IDesignDatabase::SOURCE_TYPE source, const Verific::Netlist &top)
{
    ModuleReader::ModuleNumbers numbers;
    ModuleReader reader(database, source, numbers, models, items);
    const std::vector<const Verific::Netlist *> order = modulesBelow(reader, top);
    for (std::uint32_t number = 0; number < order.size(); ++number) {
        numbers.emplace(order[number], number);
    }
    modules.reserve(order.size());
    for (std::uint32_t number = 0; number < order.size(); ++number) {
        modules.push_back(reader.read(*order[number], number));
    }
    models.finish();
    items.shrink_to_fit();
}

std::size_t Hierarchy::memory() const
{
    std::size_t bytes = sizeof(*this) + models.memory() + items.capacity() * sizeof(void *);
    for (const ModuleGraph &module : modules) {
        bytes += module.memory();
    }
    return bytes;
}

} // namespace kvr::netlistdb::analysis
