#include "clock/ClockAnalysis.h"

#include "clock/ElaboratedPrepass.h"
#include "clock/ElaboratedTrace.h"
#include "clock/HighestNet.h"
#include "clock/PostMapPrepass.h"
#include "clock/PostMapTrace.h"

#include <netlistdb/VDBNetlist.h>

#include <set>

namespace kvr::netlistdb {

ClockAnalysis::ClockAnalysis(const VDBObjectPool &elaborated, const VDBObjectPool &postMap)
    : m_elaboratedPool(elaborated), m_postMapPool(postMap), m_elaborated(ItemLookup(elaborated, &postMap)),
      m_postMap(ItemLookup(postMap, &elaborated))
{
}

const ClockAnalysis::Tables *ClockAnalysis::tablesOf(IDesignDatabase::SOURCE_TYPE type) const
{
    switch (type) {
    case IDesignDatabase::SOURCE_ELABORATED:
        return &m_elaborated;
    case IDesignDatabase::SOURCE_POST_MAP:
        return &m_postMap;
    }
    return nullptr;
}

IClockDomain *ClockAnalysis::parsedClockDomain(const InstanceNet &clock, IDesignDatabase::SOURCE_TYPE type) const
{
    const Tables *const tables = tablesOf(type);
    const bool isComplete = clock.first != nullptr && clock.second != nullptr;
    return tables != nullptr && isComplete ? tables->domains.find(clock) : nullptr;
}

std::vector<IClockDomain *> ClockAnalysis::clockDomains(IDesignDatabase::SOURCE_TYPE type) const
{
    const Tables *const tables = tablesOf(type);
    return tables != nullptr ? tables->domains.list() : std::vector<IClockDomain *>();
}

// A record leads to the items of its own source alone, which live as long as the record.

void ClockAnalysis::recordPostMapClocks(const Verific::Netlist &netlist, IVDBInstance *root)
{
    for (const InstanceNet &clock : postMapClocks(netlist, root, ItemLookup(m_postMapPool))) {
        m_postMap.domains.add(clock);
    }
}

void ClockAnalysis::recordElaboratedClocks(IVDBInstance *root)
{
    for (const InstanceNet &clock : elaboratedClocks(root, ItemLookup(m_elaboratedPool))) {
        m_elaborated.domains.add(clock);
    }
}

IClockDomain *ClockAnalysis::tracePostMap(const InstanceNet &start)
{
    return PostMapTrace(*this, start).run();
}

IClockDomain *ClockAnalysis::traceElaborated(const InstanceNet &start, const IVDBInstance *root)
{
    return ElaboratedTrace(*this, start, root).run();
}

InstanceNet ClockAnalysis::rootClock(const InstanceNet &clock, const IVDBInstance *stop) const
{
    return HighestNet(m_elaborated.items, stop).of(clock);
}

void ClockAnalysis::beginImport()
{
    clearMemos();
    m_pairs.watchForReuse();
}

void ClockAnalysis::itemMade(const VDBNetlist &module)
{
    m_pairs.mark(module);
}

void ClockAnalysis::endImport()
{
    m_pairs.forgetMarked();
}

void ClockAnalysis::clearMemos()
{
    m_firstChild.clear();
    m_clockPorts.clear();
}

void ClockAnalysis::forgetSource(IDesignDatabase::SOURCE_TYPE type)
{
    clearMemos();
    (type == IDesignDatabase::SOURCE_ELABORATED ? m_elaborated : m_postMap).domains.clear();
}

bool InstanceAnswers::find(const IVDBInstance *instance, IClockDomain *&domain) const
{
    const std::uintptr_t *answer = m_answers.find(addressOf(instance));
    if (answer != nullptr) {
        domain = reinterpret_cast<IClockDomain *>(*answer);
    }
    return answer != nullptr;
}

void InstanceAnswers::record(const IVDBInstance *instance, IClockDomain *domain)
{
    m_answers.insertIfAbsent(addressOf(instance), addressOf(domain));
}

void InstanceAnswers::forget(const IVDBInstance *instance)
{
    m_answers.erase(addressOf(instance));
}

std::vector<std::pair<IVDBInstance *, IClockDomain *>> InstanceAnswers::list()
{
    std::vector<std::pair<IVDBInstance *, IClockDomain *>> entries;
    m_answers.forEach([&entries](std::uintptr_t instance, std::uintptr_t answer) {
        entries.emplace_back(reinterpret_cast<IVDBInstance *>(instance), reinterpret_cast<IClockDomain *>(answer));
    });
    return entries;
}

} // namespace kvr::netlistdb
