#pragma once

#include "clock/ClockDomainTable.h"
#include "clock/ClockPorts.h"
#include "clock/FirstChild.h"
#include "clock/ItemLookup.h"
#include "clock/PairCache.h"
#include "clock/VisitedPairs.h"
#include "netlist/AddressMap.h"

#include <netlistdb/IDesignDatabase.h>

#include <deque>
#include <utility>
#include <vector>

namespace Verific {
class Net;
class Netlist;
} // namespace Verific

namespace kvr::netlistdb {

class VDBNetlist;

/// The results recorded for operator and primitive instances of the elaborated source (null: no clock). An instance
/// keeps its first result.
class InstanceAnswers {
  public:
    /// True when @p instance has a result, which is then written to @p domain.
    bool find(const IVDBInstance *instance, IClockDomain *&domain) const;
    void record(const IVDBInstance *instance, IClockDomain *domain);
    void forget(const IVDBInstance *instance);
    bool empty() const { return m_answers.empty(); }
    /// All entries in ascending order of instance address.
    std::vector<std::pair<IVDBInstance *, IClockDomain *>> list();

  private:
    AddressMap m_answers;
};

/// Storage of a running query, kept for the next one.
struct TraceStorage {
    std::deque<InstanceNet> queue;
    VisitedPairs visited;
    VisitedPairs deadEnds;
};

/// Clock-domain analysis of both sources: the tables of clock domains, the two caches of results, the pre-passes that
/// fill the tables, and the traces that lead from a net back to its clock.
///
/// Owns the clock domains. The pools must outlive it; what they lead to is the caller's to keep alive.
class ClockAnalysis {
  public:
    ClockAnalysis(const VDBObjectPool &elaborated, const VDBObjectPool &postMap);

    // Tables. An unknown type has none.

    IClockDomain *parsedClockDomain(const InstanceNet &clock, IDesignDatabase::SOURCE_TYPE type) const;
    std::vector<IClockDomain *> clockDomains(IDesignDatabase::SOURCE_TYPE type) const;

    // Caches.

    PairCache &pairs() { return m_pairs; }
    const PairCache &pairs() const { return m_pairs; }
    InstanceAnswers &instanceAnswers() { return m_instanceAnswers; }

    // Pre-passes: they add to the tables.

    /// Records every clock net of a flat netlist of device cells under @p root.
    void recordPostMapClocks(const Verific::Netlist &netlist, IVDBInstance *root);
    /// Records the highest net of every register clock of the tree below @p root, which may be null.
    void recordElaboratedClocks(IVDBInstance *root);

    // Queries. Neither argument may be null.

    IClockDomain *tracePostMap(const InstanceNet &start);
    /// @p root is the elaborated one.
    IClockDomain *traceElaborated(const InstanceNet &start, const IVDBInstance *root);
    InstanceNet rootClock(const InstanceNet &clock, const IVDBInstance *stop) const;

    // Imports and resets.

    /// To be called before an import makes its first item.
    void beginImport();
    /// To be called for every instance and module that an import has made. Caches that still hold an entry about an
    /// item long gone at that address drop it.
    void itemMade(IVDBInstance *instance)
    {
        // Most imports find both caches empty.
        if (!m_instanceAnswers.empty()) {
            m_instanceAnswers.forget(instance);
        }
        if (!m_pairs.empty()) {
            m_pairs.forget(instance);
        }
    }
    void itemMade(const VDBNetlist &module);
    /// To be called when an import has made its last item, also when it failed.
    void endImport();
    /// To be called before a source's items are deleted: deletes its clock domains. The caches stay.
    void forgetSource(IDesignDatabase::SOURCE_TYPE type);

  private:
    friend class ElaboratedTrace;
    friend class PostMapTrace;

    struct Tables {
        explicit Tables(const ItemLookup &lookup) : items(lookup) {}
        ItemLookup items;
        ClockDomainTable domains;
    };
    const Tables *tablesOf(IDesignDatabase::SOURCE_TYPE type) const;
    /// Forgets what is known of items and netlist objects that may be gone.
    void clearMemos();

    const VDBObjectPool &m_elaboratedPool;
    const VDBObjectPool &m_postMapPool;
    Tables m_elaborated;
    Tables m_postMap;
    PairCache m_pairs;
    InstanceAnswers m_instanceAnswers;
    FirstChild m_firstChild;
    ClockPorts m_clockPorts;
    TraceStorage m_storage;
};

} // namespace kvr::netlistdb
