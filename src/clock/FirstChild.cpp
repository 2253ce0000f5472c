#include "clock/FirstChild.h"

#include "clock/ItemLookup.h"

#include <netlistdb/NameText.h>
#include <netlistdb/VDBInstance.h>

#include <algorithm>
#include <cstddef>
#include <typeinfo>

namespace kvr::netlistdb {

namespace {

/// Children that are walked as fast as they are looked up.
constexpr std::size_t FEW_CHILDREN = 8;

/// Whether an import made the instance: it alone enters instances into the pools.
bool isImported(const IVDBInstance *instance, const ItemLookup &items)
{
    return instance != nullptr && items.find(instance) != nullptr;
}

/// Whether an import made both the child and its parent, which is its owner for good.
bool isChildOf(const IVDBInstance *parent, const IVDBInstance *child, const ItemLookup &items)
{
    return child != nullptr && child->getOwnerInstance() == parent && isImported(child, items);
}

IVDBInstance *firstByWalking(const std::vector<IVDBInstance *> &children, std::string_view name)
{
    const auto found = std::find_if(children.begin(), children.end(), [name](const IVDBInstance *child) {
        return child != nullptr && nameText(*child) == name;
    });
    return found != children.end() ? *found : nullptr;
}

} // namespace

IVDBInstance *FirstChild::find(const IVDBInstance *parent, std::string_view name, const ItemLookup &items,
                               const IVDBInstance *root)
{
    const std::vector<IVDBInstance *> &children = parent->getSubInstances();
    if (children.size() <= FEW_CHILDREN || typeid(*parent) != typeid(VDBInstance)) {
        return firstByWalking(children, name);
    }
    auto table = m_tables.find(parent->getModule());
    if (table == m_tables.end()) {
        if (parent != root && !isImported(parent, items)) {
            return firstByWalking(children, name);
        }
        table = m_tables.emplace(parent->getModule(), NameTable(parent, items)).first;
    }
    const auto place = table->second.places.find(name);
    if (place != table->second.places.end() && place->second < children.size()) {
        IVDBInstance *const child = children[place->second];
        // An import makes children in the order of the module, so that what holds for one of its parents holds for all.
        if (parent == table->second.parent || (isChildOf(parent, child, items) && nameText(*child) == name)) {
            return child;
        }
    }
    return firstByWalking(children, name);
}

FirstChild::NameTable::NameTable(const IVDBInstance *of, const ItemLookup &items) : parent(of)
{
    const std::vector<IVDBInstance *> &children = parent->getSubInstances();
    places.reserve(children.size());
    for (std::size_t place = 0; place < children.size() && isImported(children[place], items); ++place) {
        places.try_emplace(nameText(*children[place]), place);
    }
}

} // namespace kvr::netlistdb
