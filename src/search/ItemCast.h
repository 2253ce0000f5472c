#pragma once

#include <netlistdb/IVDBItem.h>

#include <typeinfo>

namespace kvr::netlistdb {

/// dynamic_cast, but quick for an item whose class is one of @p Own itself: looking through the bases of a class
/// compares their names. @p item may be null.
template <typename Kind, typename... Own> Kind *itemCast(IVDBItem *item)
{
    if (item == nullptr) {
        return nullptr;
    }
    const std::type_info *const type = &typeid(*item);
    Kind *result = nullptr;
    const bool isOwn = ((type == &typeid(Own) && (result = static_cast<Own *>(item)) != nullptr) || ...);
    return isOwn ? result : dynamic_cast<Kind *>(item);
}

} // namespace kvr::netlistdb
