#include <netlistdb/DesignDatabase.h>

#include "clock/ClockState.h"
#include "netlist/VDBObjectPool.h"

#include <netlistdb/IClockDomain.h>
#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNetlist.h>

#include <DataBase.h>
#include <LineFile.h>

namespace kvr::netlistdb {

IDesignDatabase::~IDesignDatabase() = default;

DesignDatabase::DesignDatabase(bool keepSourceNetlists)
    : m_keepSourceNetlists(keepSourceNetlists), m_pool(nullptr), m_clocks(std::make_unique<ClockState>())
{
    m_pool = new VDBObjectPool(keepSourceNetlists);
}

DesignDatabase::~DesignDatabase()
{
    // The netlist lists delete the top modules.
    m_elaborated.topModule = nullptr;
    m_postMap.topModule = nullptr;
    delete m_elaborated.root;
    delete m_postMap.root;
    for (const IVDBInstance *root : m_replacedRoots) {
        delete root;
    }
    for (const Source *each : {&m_elaborated, &m_postMap}) {
        for (const IVDBNetlist *netlist : each->netlists) {
            delete netlist;
        }
    }
    for (Source *each : {&m_elaborated, &m_postMap}) {
        for (const IClockDomain *domain : each->clockDomains) {
            delete domain;
        }
        each->clockDomains.clear();
    }
    m_drivingClockCache.clear();
    delete m_pool;
    delete m_elaborated.workingCopy;
    delete m_postMap.workingCopy;
    for (const Verific::Netlist *copy : m_replacedCopies) {
        delete copy;
    }
    m_clocks.reset();
    if (m_keepSourceNetlists) {
        Verific::Libset::Reset();
    }
    Verific::LineFile::DeleteAllLineFiles();
    Verific::LineFile::ResetFileIdMaps();
}

DesignDatabase::Source *DesignDatabase::source(SOURCE_TYPE type)
{
    switch (type) {
    case SOURCE_ELABORATED:
        return &m_elaborated;
    case SOURCE_POST_MAP:
        return &m_postMap;
    }
    return nullptr;
}

const DesignDatabase::Source *DesignDatabase::source(SOURCE_TYPE type) const
{
    return const_cast<DesignDatabase *>(this)->source(type);
}

bool DesignDatabase::load(const std::string & /*path*/)
{
    return true;
}

bool DesignDatabase::save(const std::string & /*path*/, bool /*flag*/)
{
    return true;
}

bool DesignDatabase::getCheckSum(unsigned char * /*buffer*/)
{
    return false;
}

bool DesignDatabase::isSourceLoaded(SOURCE_TYPE type) const
{
    const Source *const asked = source(type);
    return asked != nullptr && asked->topModule != nullptr;
}

IVDBNetlist *DesignDatabase::getTopModule(SOURCE_TYPE type)
{
    const Source *const asked = source(type);
    return asked != nullptr ? asked->topModule : nullptr;
}

IVDBInstance *DesignDatabase::getRoot(SOURCE_TYPE type)
{
    const Source *const asked = source(type);
    return asked != nullptr ? asked->root : nullptr;
}

Verific::Netlist *DesignDatabase::workingCopy(SOURCE_TYPE type) const
{
    const Source *const asked = source(type);
    return asked != nullptr ? asked->workingCopy : nullptr;
}

std::vector<IVDBInstance *> DesignDatabase::getViewInstances(IVDBNetlist * /*netlist*/)
{
    return {};
}

std::vector<IVDBInstance *> DesignDatabase::getChildInstances(IVDBNetlist * /*netlist*/)
{
    return {};
}

} // namespace kvr::netlistdb
