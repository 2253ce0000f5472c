#pragma once

#include <netlistdb/InstanceNetSet.h>

#include <set>

namespace Verific {
class Netlist;
}

namespace kvr::netlistdb {

class ItemLookup;

/// Every clock net of a flat netlist of device cells, under @p root: the inputs of clock buffers, and the nets on the
/// clock pins of sequential cells. A net without item appears as null. Walks all pins of these cells.
std::set<InstanceNet> postMapClocks(const Verific::Netlist &netlist, IVDBInstance *root, const ItemLookup &items);

} // namespace kvr::netlistdb
