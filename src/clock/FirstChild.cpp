#include "clock/FirstChild.h"

#include "clock/ItemLookup.h"

#include <netlistdb/VDBInstance.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <typeinfo>

namespace kvr::netlistdb {

namespace {

/// Children that are walked as fast as they are looked up.
constexpr std::size_t FEW = 8;

bool isCalled(const IVDBInstance *instance, std::string_view name)
{
    return instance != nullptr && instance->getName() == name;
}

/// Whether an import made the instance: it alone enters instances into the pools.
bool isImported(const IVDBInstance *instance, const ItemLookup &items)
{
    return instance != nullptr && items.find(instance) != nullptr;
}

IVDBInstance *firstByWalking(const std::vector<IVDBInstance *> &children, std::string_view name)
{
    const auto found = std::find_if(children.begin(), children.end(),
                                    [name](const IVDBInstance *child) { return isCalled(child, name); });
    return found != children.end() ? *found : nullptr;
}

} // namespace

IVDBInstance *FirstChild::find(const IVDBInstance *parent, std::string_view name, const ItemLookup &items,
                               const IVDBInstance *root)
{
    const std::vector<IVDBInstance *> &children = parent->getSubInstances();
    if (children.size() <= FEW || typeid(*parent) != typeid(VDBInstance) ||
        children.size() >= std::numeric_limits<std::uint32_t>::max() ||
        !(parent == root || isImported(parent, items))) {
        return firstByWalking(children, name);
    }
    auto table = m_tables.find(parent->getModule());
    if (table == m_tables.end()) {
        table = m_tables.emplace(parent->getModule(), NameTable(parent, items)).first;
    }
    const std::size_t place = table->second.placeOf(name);
    if (place < table->second.size() && place < children.size()) {
        IVDBInstance *const child = children[place];
        if (parent == table->second.parent() || (isImported(child, items) && isCalled(child, name))) {
            return child;
        }
    }
    return firstByWalking(children, name);
}

FirstChild::NameTable::NameTable(const IVDBInstance *parent, const ItemLookup &items) : m_parent(parent)
{
    const std::vector<IVDBInstance *> &children = parent->getSubInstances();
    std::size_t slots = 2 * FEW;
    while (slots < 2 * children.size()) {
        slots *= 2;
    }
    m_slots.assign(slots, 0);
    for (IVDBInstance *child : children) {
        if (!isImported(child, items)) {
            break;
        }
        std::uint32_t &slot = m_slots[slotOf(child->getName())];
        ++m_size;
        if (slot == 0) {
            slot = static_cast<std::uint32_t>(m_size);
        }
    }
}

std::size_t FirstChild::NameTable::placeOf(std::string_view name) const
{
    const std::uint32_t place = m_slots[slotOf(name)];
    return place != 0 ? place - 1 : m_size;
}

/// The slot that holds @p name, or the free one where it belongs.
std::size_t FirstChild::NameTable::slotOf(std::string_view name) const
{
    const std::vector<IVDBInstance *> &children = m_parent->getSubInstances();
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = std::hash<std::string_view>()(name) & mask;
    while (m_slots[slot] != 0 && !isCalled(children[m_slots[slot] - 1], name)) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

} // namespace kvr::netlistdb
