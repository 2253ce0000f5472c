#pragma once

#include "netlist/AddressMap.h"

#include <unordered_set>

namespace Verific {
class Instance;
class Netlist;
} // namespace Verific

namespace kvr::netlistdb {

class IVDBInstance;

/// Finds the sub-instance that stands for an instance of a netlist without walking the sub-instances: they stand in
/// the order of the netlist's instances. One entry per instance of a visited netlist, however often it is unfolded.
class SubInstanceIndex {
  public:
    /// The first sub-instance of @p parent, an instance of @p netlist, whose name is that of @p instance, or null.
    /// Walks the sub-instances where @p instance is of another netlist.
    IVDBInstance *find(const IVDBInstance *parent, const Verific::Netlist *netlist, const Verific::Instance *instance);
    void clear();

  private:
    void add(const Verific::Netlist *netlist);

    AddressMap m_places; ///< from instance to the place of the first instance of its name
    std::unordered_set<const Verific::Netlist *> m_netlists;
};

} // namespace kvr::netlistdb
