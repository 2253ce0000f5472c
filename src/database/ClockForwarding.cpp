// The clock operations of the database, which clock analysis carries out.

#include "database/DatabaseState.h"

#include <netlistdb/IVDBNet.h>
#include <netlistdb/NameText.h>
#include <netlistdb/VDBInstance.h>

#include <chrono>
#include <typeinfo>

namespace kvr::netlistdb {

namespace {

/// Builds the path of @p instance and throws it away: a caller's own class may want to know that it was asked. Of our
/// own class nobody can tell, and a path costs a fifth of a query.
void askForPath(const IVDBInstance &instance)
{
    if (typeid(instance) != typeid(VDBInstance)) {
        static_cast<void>(instance.getPath());
    }
}

void askForNames(const IVDBInstance &instance, const IVDBNet &net)
{
    askForPath(instance);
    static_cast<void>(nameText(net));
}

} // namespace

void DesignDatabase::addCache(IClockDomain *domain, InstanceNet key)
{
    m_state->clocks.pairs().add(domain, key);
}

IClockDomain *DesignDatabase::isCached(InstanceNet key)
{
    const auto position = findCachedResult(key);
    return position != drivingClockCache().end() ? position->first : nullptr;
}

DesignDatabase::DrivingClockCache::iterator DesignDatabase::findCachedResult(InstanceNet key)
{
    return m_state->clocks.pairs().find(key);
}

IClockDomain *DesignDatabase::getParsedClockDomain(IVDBInstance *inst, IVDBNet *net, SOURCE_TYPE type)
{
    return m_state->clocks.parsedClockDomain({inst, net}, type);
}

// The time stamps frame what is to be measured by whoever profiles these functions; nothing reports them.

IClockDomain *DesignDatabase::findDrivingClockDomains(IVDBInstance *inst, IVDBNet *net, SOURCE_TYPE type)
{
    [[maybe_unused]] const auto started = std::chrono::steady_clock::now();
    if (!m_state->keepSourceNetlists) {
        return nullptr;
    }
    askForNames(*inst, *net);
    IClockDomain *domain = nullptr;
    if (type == SOURCE_ELABORATED) {
        domain = findDrivingClockDomainElab(inst, net);
    } else if (type == SOURCE_POST_MAP) {
        domain = findDrivingClockDomainPostMap(inst, net);
    }
    [[maybe_unused]] const auto ended = std::chrono::steady_clock::now();
    return domain;
}

std::vector<IClockDomain *> DesignDatabase::listAllClockDomains(SOURCE_TYPE type) const
{
    return m_state->clocks.clockDomains(type);
}

void DesignDatabase::parseClkDomainPostMap(Verific::Netlist *netlist)
{
    [[maybe_unused]] const auto started = std::chrono::steady_clock::now();
    m_state->clocks.recordPostMapClocks(*netlist, dynamic_cast<VDBInstance *>(getRoot(SOURCE_POST_MAP)));
    [[maybe_unused]] const auto ended = std::chrono::steady_clock::now();
}

void DesignDatabase::parseClkDomainElab(Verific::Netlist * /*netlist*/)
{
    [[maybe_unused]] const auto started = std::chrono::steady_clock::now();
    m_state->clocks.recordElaboratedClocks(dynamic_cast<VDBInstance *>(getRoot(SOURCE_ELABORATED)));
    [[maybe_unused]] const auto ended = std::chrono::steady_clock::now();
}

DesignDatabase::InstanceNet DesignDatabase::getRootClk(IVDBInstance *inst, IVDBNet *net, IVDBInstance *stop)
{
    return m_state->clocks.rootClock({inst, net}, stop);
}

IClockDomain *DesignDatabase::findDrivingClockDomainPostMap(IVDBInstance *inst, IVDBNet *net)
{
    if (net == nullptr || inst == nullptr) {
        return nullptr;
    }
    askForNames(*inst, *net);
    const auto *const root = dynamic_cast<VDBInstance *>(getRoot(SOURCE_POST_MAP));
    return root != nullptr ? m_state->clocks.tracePostMap({inst, net}) : nullptr;
}

IClockDomain *DesignDatabase::findDrivingClockDomainElab(IVDBInstance *inst, IVDBNet *net)
{
    if (net == nullptr || inst == nullptr) {
        return nullptr;
    }
    askForNames(*inst, *net);
    const auto *const root = dynamic_cast<VDBInstance *>(getRoot(SOURCE_ELABORATED));
    return root != nullptr ? m_state->clocks.traceElaborated({inst, net}, root) : nullptr;
}

VDBObjectPool *DesignDatabase::objectPool(SOURCE_TYPE type) const
{
    Source *const source = m_state->source(type);
    return source != nullptr ? &source->pool : nullptr;
}

const DesignDatabase::DrivingClockCache &DesignDatabase::drivingClockCache() const
{
    return m_state->clocks.pairs().sets();
}

std::vector<std::pair<IVDBInstance *, IClockDomain *>> DesignDatabase::elaboratedInstanceCache() const
{
    return m_state->clocks.instanceAnswers().list();
}

} // namespace kvr::netlistdb
