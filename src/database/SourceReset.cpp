#include <netlistdb/DesignDatabase.h>

#include "netlist/VDBObjectPool.h"

#include <netlistdb/IClockDomain.h>
#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/IVDBNetlist.h>
#include <netlistdb/IVDBPort.h>

#include <DataBase.h>

#include <unordered_map>

namespace kvr::netlistdb {

namespace {

using Netlists = std::vector<IVDBNetlist *>;

AddressMap::Address addressOf(const void *object)
{
    return reinterpret_cast<AddressMap::Address>(object);
}

template <typename Visit> void forEachNet(const IVDBNetlist &netlist, Visit visit)
{
    for (const bool fromBuses : {false, true}) {
        for (IVDBNet *net : netlist.getNets(fromBuses)) {
            visit(net);
        }
    }
}

/// The port that @p other made from the same netlist port as the one at @p at of @p netlist; both list their ports in
/// the order of one netlist. Null when the netlist has changed between the two imports.
IVDBPort *samePort(const IVDBNetlist &netlist, const IVDBNetlist *other, std::size_t at)
{
    if (other == nullptr || other->getPorts().size() != netlist.getPorts().size()) {
        return nullptr;
    }
    IVDBPort *const port = other->getPorts()[at];
    return port->getName() == netlist.getPorts()[at]->getName() ? port : nullptr;
}

/// Ports have no entry that leads back from the item, so their entries are found by the item. Answers from each port of
/// @p freed to the port of @p remaining that takes its place, or 0.
AddressMap portReplacements(const VDBObjectPool &pool, const Netlists &freed, const Netlists &remaining)
{
    std::unordered_map<const Verific::Netlist *, const IVDBNetlist *> remainingItems;
    for (const IVDBNetlist *netlist : remaining) {
        if (const Verific::Netlist *object = pool.find(netlist)) {
            remainingItems.emplace(object, netlist);
        }
    }
    AddressMap replacements;
    for (const IVDBNetlist *netlist : freed) {
        const auto same = remainingItems.find(pool.find(netlist));
        const IVDBNetlist *const other = same != remainingItems.end() ? same->second : nullptr;
        for (std::size_t at = 0; at < netlist->getPorts().size(); ++at) {
            replacements.insertIfAbsent(addressOf(netlist->getPorts()[at]), addressOf(samePort(*netlist, other, at)));
        }
    }
    return replacements;
}

void eraseInstances(VDBObjectPool &pool, const IVDBInstance *root)
{
    std::vector<const IVDBInstance *> pending;
    if (root != nullptr) {
        pending.push_back(root);
    }
    while (!pending.empty()) {
        const IVDBInstance *const instance = pending.back();
        pending.pop_back();
        pool.eraseInstance(instance);
        pending.insert(pending.end(), instance->getSubInstances().begin(), instance->getSubInstances().end());
    }
}

} // namespace

void DesignDatabase::forgetInPool(const Source &freed, const Source &remaining)
{
    VDBObjectPool &pool = *m_pool;
    if (remaining.netlists.empty() && m_replacedRoots.empty()) {
        pool.clear();
        return;
    }
    if (pool.empty()) {
        return;
    }
    pool.replacePorts(portReplacements(pool, freed.netlists, remaining.netlists));
    for (const IVDBNetlist *netlist : freed.netlists) {
        forEachNet(*netlist, [&](IVDBNet *net) { pool.eraseNet(net); });
        pool.eraseNetlist(netlist);
    }
    eraseInstances(pool, freed.root);
    // Both sources may share netlists below their tops. What those were registered to first is gone; they now lead to
    // the items of the source that stays.
    for (const IVDBNetlist *netlist : remaining.netlists) {
        if (const Verific::Netlist *object = pool.find(netlist)) {
            pool.registerNetlist(object, netlist);
        }
        forEachNet(*netlist, [&](const IVDBNet *net) {
            if (const Verific::Net *object = pool.find(net)) {
                pool.registerNet(object, net);
            }
        });
    }
}

bool DesignDatabase::reset(SOURCE_TYPE type)
{
    if (!isSourceLoaded(type)) {
        return false;
    }
    Source &freed = *source(type);
    forgetInPool(freed, type == SOURCE_ELABORATED ? m_postMap : m_elaborated);
    forgetClockRecords(type);

    delete freed.workingCopy;
    freed.workingCopy = nullptr;
    const IVDBNetlist *const topModule = freed.topModule;
    freed.topModule = nullptr;
    delete topModule;
    delete freed.root;
    freed.root = nullptr;
    for (const IVDBNetlist *netlist : freed.netlists) {
        if (netlist != topModule) {
            delete netlist;
        }
    }
    freed.netlists.clear();
    for (const IClockDomain *domain : freed.clockDomains) {
        delete domain;
    }
    freed.clockDomains.clear();
    return true;
}

} // namespace kvr::netlistdb
