#pragma once

#include "netlist/AddressMap.h"

#include <netlistdb/InstanceNetSet.h>

#include <map>
#include <unordered_map>

namespace kvr::netlistdb {

class IClockDomain;
class VDBNetlist;

/// The pairs known to lead to each clock domain (null: to no clock). A pair may be recorded under several; the first in
/// ascending order of address, null before all, is the one that counts.
class PairCache {
  public:
    using Sets = std::map<IClockDomain *, InstanceNetSet>;

    void add(IClockDomain *domain, const InstanceNet &pair);
    /// Position of the first domain that @p pair is recorded under, or the end of the sets.
    Sets::iterator find(const InstanceNet &pair);
    const Sets &sets() const { return m_sets; }
    bool empty() const { return m_first.empty(); }

    // An import may give a new item the address of a deleted one, whose entries must then be removed. Once
    // watchForReuse has returned, this allocates nothing, so that it also succeeds when an import has run out of
    // memory.

    /// Takes note of the nets that have entries.
    void watchForReuse();
    /// Removes the entries of an instance that an import has made.
    void forget(IVDBInstance *instance);
    /// Marks the entries of those nets of a module that an import has made.
    void mark(const VDBNetlist &module);
    /// Removes the marked entries, and forgets the nets that were watched.
    void forgetMarked();

  private:
    Sets m_sets;
    /// From a pair to the first domain it is recorded under: for each instance, from net to domain.
    std::unordered_map<IVDBInstance *, AddressMap> m_first;
    AddressMap m_watched; ///< from each net with entries to 1 when they are marked
    bool m_hasMarked = false;
};

} // namespace kvr::netlistdb
