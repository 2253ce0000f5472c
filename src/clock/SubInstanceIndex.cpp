#include "clock/SubInstanceIndex.h"

#include "DataBase.h"

#include <netlistdb/IVDBInstance.h>

#include <string_view>
#include <unordered_map>

namespace kvr::netlistdb {

namespace {

std::string_view nameOf(const Verific::Instance *instance)
{
    const char *name = instance->Name();
    return name != nullptr ? std::string_view(name) : std::string_view();
}

} // namespace

IVDBInstance *SubInstanceIndex::find(const IVDBInstance *parent, const Verific::Netlist *netlist,
                                     const Verific::Instance *instance)
{
    const std::vector<IVDBInstance *> &children = parent->getSubInstances();
    const std::string_view name = nameOf(instance);
    // Under another module a child may have the name at that place by chance, and not be the first that has it.
    if (netlist != nullptr && netlist == instance->Owner()) {
        if (m_netlists.count(netlist) == 0) {
            add(netlist);
        }
        const std::uintptr_t *place = m_places.find(reinterpret_cast<std::uintptr_t>(instance));
        if (place != nullptr && *place < children.size()) {
            IVDBInstance *child = children[*place];
            if (child != nullptr && child->getName() == name) {
                return child;
            }
        }
    }
    for (IVDBInstance *child : children) {
        if (child != nullptr && child->getName() == name) {
            return child;
        }
    }
    return nullptr;
}

void SubInstanceIndex::clear()
{
    m_places.clear();
    m_netlists.clear();
}

void SubInstanceIndex::add(const Verific::Netlist *netlist)
{
    std::unordered_map<std::string_view, std::uintptr_t> firstOfName;
    std::uintptr_t place = 0;
    Verific::MapIter instances;
    Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (netlist, instances, instance) {
        const auto first = firstOfName.try_emplace(nameOf(instance), place).first;
        m_places.insertIfAbsent(reinterpret_cast<std::uintptr_t>(instance), first->second);
        ++place;
    }
    m_netlists.insert(netlist);
}

} // namespace kvr::netlistdb
