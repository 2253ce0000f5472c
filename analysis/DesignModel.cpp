#include "analysis/DesignModel.h"

#include "analysis/RegisterCounts.h"

#include <DataBase.h>

#include <netlistdb/DesignDatabase.h>
#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/NameText.h>
#include <netlistdb/analysis/ClockMap.h>

#include <algorithm>
#include <stdexcept>

namespace kvr::netlistdb::analysis {

namespace {

const Verific::Netlist &workingCopyOf(const DesignDatabase &database, IDesignDatabase::SOURCE_TYPE source)
{
    const Verific::Netlist *const top = database.workingCopy(source);
    if (!database.isSourceLoaded(source)) {
        throw std::invalid_argument("ClockMap: the source is not loaded");
    }
    if (top == nullptr) {
        throw std::invalid_argument("ClockMap: the database keeps no source netlists");
    }
    return *top;
}

/// Place of the part, of those that begin at @p first and end where the next begins, that holds @p number.
std::uint32_t partOf(const std::vector<std::uint32_t> &first, std::uint32_t number)
{
    return static_cast<std::uint32_t>(std::upper_bound(first.begin(), first.end(), number) - first.begin()) - 1;
}

} // namespace

std::size_t countClocks(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE source)
{
    const Hierarchy hierarchy(database, source, workingCopyOf(database, source));
    return countRegisters(hierarchy, findClocks(hierarchy)).size();
}

DesignModel::DesignModel(DesignDatabase &from, IDesignDatabase::SOURCE_TYPE type)
    : database(from), source(type), generation(from.generation(type)), root(from.getRoot(type)),
      hierarchy(from, type, workingCopyOf(from, type)), clocks(findClocks(hierarchy))
{
    sets.reserve(hierarchy.modules.size());
    for (std::uint32_t number = 0; number < hierarchy.modules.size(); ++number) {
        sets.push_back(findSets(hierarchy, clocks, number, number == hierarchy.top(), sets));
    }
    indexItems();
}

void DesignModel::indexItems()
{
    for (const ModuleGraph &module : hierarchy.modules) {
        m_firstNet.push_back(module.firstNet);
        m_firstSub.push_back(static_cast<std::uint32_t>(m_subs.size()));
        for (const ModuleGraph::SubInstance &sub : module.subs) {
            m_subs.push_back(sub.instance);
        }
    }
    m_netIndex.build(hierarchy.items);
    m_subIndex.build(m_subs);
}

DesignModel::ModuleNet DesignModel::find(const IVDBNet *net) const
{
    const std::uint32_t found = m_netIndex.find(net);
    if (found == NONE) {
        if (net == nullptr || database.sourceNet(net, source) == nullptr) {
            throw std::invalid_argument("ClockMap: the net is no net of the source");
        }
        return {NONE, NONE};
    }
    const std::uint32_t module = m_firstNet.size() == 1 ? 0 : partOf(m_firstNet, found);
    return {module, found - m_firstNet[module]};
}

bool DesignModel::find(const IVDBInstance *inst, Context &context) const
{
    bool isInside = true;
    for (const IVDBInstance *at = inst; at != root; at = at->getOwnerInstance()) {
        const Verific::Instance *const instance = at != nullptr ? database.sourceInstance(at, source) : nullptr;
        if (instance == nullptr) {
            throw std::invalid_argument("ClockMap: the instance is no instance of the source");
        }
        const std::uint32_t found = m_subIndex.find(instance);
        isInside = isInside && found != NONE;
        context.push_back({NONE, found, 0});
    }
    context.push_back(topLevel());
    std::reverse(context.begin(), context.end());
    for (std::size_t level = 1; level < context.size() && isInside; ++level) {
        const std::uint32_t above = context[level - 1].module;
        const std::uint32_t sub = context[level].sub - m_firstSub[above];
        isInside = sub < hierarchy.modules[above].subs.size();
        if (isInside) {
            context[level] = below(context[level - 1], sub);
        }
    }
    return isInside;
}

Level DesignModel::below(const Level &level, std::uint32_t sub) const
{
    return {hierarchy.modules[level.module].subs[sub].module, sub,
            level.firstClock + clocks[level.module].firstOfSub[sub]};
}

std::uint32_t DesignModel::netAbove(const Level &above, const Level &level, std::uint32_t port) const
{
    const ModuleGraph &module = hierarchy.modules[above.module];
    return module.netsOf(module.subs[level.sub].cell)[port];
}

IVDBInstance *DesignModel::itemOf(const Context &context) const
{
    IVDBInstance *item = root;
    for (std::size_t level = 1; level < context.size() && item != nullptr; ++level) {
        const ModuleGraph::SubInstance &sub = hierarchy.modules[context[level - 1].module].subs[context[level].sub];
        const std::vector<IVDBInstance *> &children = item->getSubInstances();
        item = sub.cell < children.size() ? children[sub.cell] : nullptr;
        if (item != nullptr && database.sourceInstance(item, source) != sub.instance) {
            item = nullptr;
        }
    }
    return item;
}

const Verific::Instance *DesignModel::instanceOf(const Context &context, std::uint32_t cell) const
{
    const IVDBInstance *const item = itemOf(context);
    if (item != nullptr && cell < item->getSubInstances().size()) {
        return database.sourceInstance(item->getSubInstances()[cell], source);
    }
    Verific::MapIter instances;
    const Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (hierarchy.modules[context.back().module].netlist, instances, instance) {
        if (cell-- == 0) {
            return instance;
        }
    }
    return nullptr;
}

std::string DesignModel::pathOf(const Context &context) const
{
    std::string path;
    for (std::size_t level = 1; level < context.size(); ++level) {
        const char *const name = hierarchy.modules[context[level - 1].module].subs[context[level].sub].instance->Name();
        if (name != nullptr && *name != '\0') {
            path.append(path.empty() ? "" : "/").append(name);
        }
    }
    return path;
}

std::string DesignModel::nameOf(const Place &place) const
{
    std::string name = pathOf(place.context);
    const IVDBNet *const item = itemOf(place);
    return name.append(name.empty() ? "" : "/").append(item != nullptr ? nameText(*item) : std::string_view());
}

Place DesignModel::rootOf(std::uint32_t clock) const
{
    Context context{topLevel()};
    while (true) {
        const ModuleClocks &own = clocks[context.back().module];
        const std::uint32_t number = clock - context.back().firstClock;
        if (number < own.roots.size()) {
            const std::uint32_t net = own.roots[number];
            return {std::move(context), net};
        }
        context.push_back(below(context.back(), partOf(own.firstOfSub, number)));
    }
}

std::size_t DesignModel::memory() const
{
    std::size_t bytes = sizeof(*this) + hierarchy.memory() + m_netIndex.memory() + m_subIndex.memory() +
                        m_subs.capacity() * sizeof(void *) +
                        (m_firstNet.capacity() + m_firstSub.capacity()) * sizeof(std::uint32_t);
    for (const ModuleClocks &module : clocks) {
        bytes += module.memory();
    }
    for (const ModuleSets &module : sets) {
        bytes += module.memory();
    }
    return bytes;
}

} // namespace kvr::netlistdb::analysis
