#pragma once

#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"
#include "tests/support/Sources.h"

#include <DataBase.h>

#include <netlistdb/DesignDatabase.h>
#include <netlistdb/IClockDomain.h>
#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/IVDBNetlist.h>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace clock_test {

using kvr::netlistdb::DesignDatabase;
using kvr::netlistdb::IClockDomain;
using kvr::netlistdb::IDesignDatabase;
using kvr::netlistdb::IVDBInstance;
using kvr::netlistdb::IVDBNet;
using kvr::netlistdb::IVDBNetlist;

using testsupport::ELABORATED;
using testsupport::POST_MAP;

using Names = std::multiset<std::string>;
/// From the name of an answer ("none" for null) to the names of what leads to it.
using NamesByClock = std::map<std::string, Names>;

/// Every net of the instance's module.
std::vector<IVDBNet *> netsOf(const IVDBInstance *instance);
/// The first net of that name in the instance's module, or null.
IVDBNet *netOf(const IVDBInstance *instance, const std::string &name);
/// The instance at @p path below @p root ("": the root itself), or null.
IVDBInstance *instanceAt(IVDBInstance *root, const std::string &path);
/// Every instance of the tree, level by level.
std::vector<IVDBInstance *> treeOf(IVDBInstance *root);
/// Name of the domain, "none" for null.
std::string nameOf(const IClockDomain *domain);
/// Path of the instance, "/" and name of the net; the net's name alone at the root, "" for a null net.
std::string nameOf(const DesignDatabase::InstanceNet &pair);

/// What the two caches hold, by name.
NamesByClock pairCacheOf(const DesignDatabase &database);
NamesByClock instanceCacheOf(const DesignDatabase &database);

/// A database that keeps its source netlists.
class ClockTest : public ::testing::Test {
  protected:
    void elaborated(const char *netlist) { database->parseElaboratedNetlist(testsupport::netlistFromText(netlist)); }
    void postMap(const char *netlist) { database->parsePostMapNetlist(testsupport::netlistFromText(netlist)); }
    /// The kept copy of the imported netlist, to change it behind the database's back.
    Verific::Netlist *copyOf(IDesignDatabase::SOURCE_TYPE type) { return database->workingCopy(type); }

    IVDBInstance *instance(const std::string &path, IDesignDatabase::SOURCE_TYPE type);
    /// Name of the clock that drives the net @p net of the instance at @p path.
    std::string clockOf(const std::string &path, const std::string &net, IDesignDatabase::SOURCE_TYPE type);
    /// Names of all clock domains of a source.
    Names clocks(IDesignDatabase::SOURCE_TYPE type);
    NamesByClock pairCache() const { return pairCacheOf(*database); }
    NamesByClock instanceCache() const { return instanceCacheOf(*database); }

    testsupport::LibsetGuard guard;
    std::unique_ptr<DesignDatabase> database = std::make_unique<DesignDatabase>(true);
};

} // namespace clock_test
