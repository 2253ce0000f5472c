#pragma once

#include <netlistdb/InstanceNetSet.h>

#include <set>

namespace kvr::netlistdb {

class ItemLookup;

/// The highest net of every register clock in the tree below @p root, which may be null. A net without item
/// appears as null. Walks the instances of user modules, and each net from a clock up to the root once.
std::set<InstanceNet> elaboratedClocks(IVDBInstance *root, const ItemLookup &items);

} // namespace kvr::netlistdb
