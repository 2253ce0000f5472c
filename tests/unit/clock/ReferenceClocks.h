#pragma once

#include "ClockTest.h"

#include <map>
#include <set>
#include <utility>

namespace clock_test {

/// The clock analysis once more, as plain as can be: ordered containers, walks from end to end, no index. Slow.
///
/// Works on the items and the netlist objects of a database and keeps caches of its own, which stay equal to those of
/// the database as long as both are asked the same questions in the same order.
class ReferenceClocks {
  public:
    using Pair = DesignDatabase::InstanceNet;
    using PairCache = std::map<IClockDomain *, std::set<Pair>>;
    using InstanceCache = std::map<IVDBInstance *, IClockDomain *>;

    explicit ReferenceClocks(DesignDatabase &database) : m_database(database) {}

    /// The (instance, net) pairs that the records of a source stand for.
    std::set<Pair> postMapClocks() const;
    std::set<Pair> elaboratedClocks() const;
    Pair rootClock(Pair start, const IVDBInstance *stop) const;

    IClockDomain *findPostMap(IVDBInstance *instance, IVDBNet *net);
    IClockDomain *findElaborated(IVDBInstance *instance, IVDBNet *net);

    const PairCache &pairCache() const { return m_pairCache; }
    const InstanceCache &instanceCache() const { return m_instanceCache; }

  private:
    IClockDomain *recordOf(const Pair &pair, IDesignDatabase::SOURCE_TYPE type) const;
    PairCache::const_iterator cached(const Pair &pair) const;
    void cacheAll(IClockDomain *domain, const std::set<Pair> &pairs, const std::set<Pair> &except);

    DesignDatabase &m_database;
    PairCache m_pairCache;
    InstanceCache m_instanceCache;
};

} // namespace clock_test
