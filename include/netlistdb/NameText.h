#pragma once

#include <netlistdb/Export.h>

#include <string_view>

namespace kvr::netlistdb {

class IVDBItem;

/// The name of @p item, as getName() returns it, NUL-terminated; lives as long as the item.
///
/// Nets, buses and instances make the string that getName() returns when they are asked for it first, and keep it. Who
/// reads the names of millions of them saves that time and memory here. Never throws for the classes of this library.
NETLISTDB_EXPORT std::string_view nameText(const IVDBItem &item);

} // namespace kvr::netlistdb
