#pragma once

#include "Map.h"

namespace Verific {

/// Adds @p object under @p name to an owner's table, compacting the table first when most of it is gaps; returns the
/// slot.
/// @p moved(object, slot) is called for every object that compacting moves.
template <typename Object, typename Moved>
unsigned addToTable(Map &table, const char *name, Object *object, Moved moved)
{
    if (table.sparse()) {
        table.compact([&moved](void *value, unsigned slot) { moved(static_cast<Object *>(value), slot); });
    }
    return table.append(name, object);
}

} // namespace Verific
