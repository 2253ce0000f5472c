#pragma once

#include <netlistdb/Export.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Verific {
class Netlist;
}

namespace kvr::netlistdb {

class IClockDomain;
class IVDBInstance;
class IVDBNet;
class IVDBNetlist;
class IVDBResultSet;
class VDBSearchParam;

/// One design, seen through up to two source netlists: the elaborated one and the post-map one.
///
/// Imports, queries, reset and destruction run on the caller's thread and must not overlap on one database.
class NETLISTDB_EXPORT IDesignDatabase {
  public:
    /// The kinds of source netlist. Any other value counts as a source that is absent.
    enum SOURCE_TYPE : std::uint32_t {
        SOURCE_ELABORATED = 1, ///< user modules down to generic operators, primitives and registers
        SOURCE_POST_MAP = 2,   ///< a flat top of device primitive cells
    };

    /// Deletes every item of both sources: result sets first.
    virtual ~IDesignDatabase();

    /// Imports an elaborated netlist, which stays the caller's: it is read and copied only. The source then counts as
    /// loaded even when the answer is false: some instance names a view outside the netlist's hierarchy. No module may
    /// contain itself. A source that is loaded already is not emptied first: its old tree lives on until the database
    /// goes. What a throwing import built stays until the source is reset. Costs time and memory in proportion to the
    /// unfolded design.
    /// @throws std::invalid_argument "netlist is nullptr" (nothing changes then), std::out_of_range "stoi" when a bit
    ///         subscript exceeds a signed 32-bit integer, std::bad_alloc.
    virtual bool parseElaboratedNetlist(Verific::Netlist *netlist) = 0;
    /// Restores a saved netlist and imports it; false when the file @p path cannot be restored (nothing changes then)
    /// or when the import says so. The restored netlist goes again.
    /// @throws as parseElaboratedNetlist; the restored netlist then stays in the global library set.
    virtual bool parseElaboratedNetlistFromFile(const std::string &path) = 0;
    /// Imports a post-map netlist: its top level of instances alone is unfolded. As parseElaboratedNetlist otherwise.
    virtual bool parsePostMapNetlist(Verific::Netlist *netlist) = 0;
    /// As parseElaboratedNetlistFromFile, for the post-map source.
    virtual bool parsePostMapNetlistFromFile(const std::string &path) = 0;
    /// Does nothing and answers true.
    virtual bool load(const std::string &path) = 0;
    /// Does nothing, touches no file and answers true.
    virtual bool save(const std::string &path, bool flag) = 0;
    /// Frees one source's tree and clock domains; every pointer into it is dead afterwards. False when that source is
    /// not loaded. The other source stays as it is.
    virtual bool reset(SOURCE_TYPE type) = 0;
    /// Whether the source has a top module: an import got at least that far, and no reset has followed.
    virtual bool isSourceLoaded(SOURCE_TYPE type) const = 0;
    /// Does nothing, leaves @p buffer alone and answers false; VDBHelper::computeSHA256CheckSum gives the checksum of a
    /// file.
    virtual bool getCheckSum(unsigned char *buffer) = 0;
    /// The module of the top netlist, owned by the database, or null when the source is not loaded.
    virtual IVDBNetlist *getTopModule(SOURCE_TYPE type) = 0;
    /// The root of the instance tree, owned by the database, or null when the source is not loaded.
    virtual IVDBInstance *getRoot(SOURCE_TYPE type) = 0;
    /// Always empty: the hierarchy is navigated through the instances.
    virtual std::vector<IVDBInstance *> getViewInstances(IVDBNetlist *netlist) = 0;
    /// Always empty: the hierarchy is navigated through the instances.
    virtual std::vector<IVDBInstance *> getChildInstances(IVDBNetlist *netlist) = 0;
    /// Starts a search; nothing is visited before the first `next`. @p param is copied. The caller owns the result set
    /// and deletes it before the items that it walks.
    virtual IVDBResultSet *search(const VDBSearchParam &param) = 0;
    /// The clock domain that drives @p net seen in @p inst: the clock of the first register met walking back from it,
    /// or null. Needs a database made with keepSourceNetlists. Neither @p inst nor @p net may be null. Owned by the
    /// database. Walks the fan-in cone once; answers are remembered, so that a later query stops where an earlier one
    /// passed.
    virtual IClockDomain *findDrivingClockDomains(IVDBInstance *inst, IVDBNet *net, SOURCE_TYPE type) = 0;
    /// Every clock domain of a source, in ascending order of address: a new list of records that the database owns.
    virtual std::vector<IClockDomain *> listAllClockDomains(SOURCE_TYPE type) const = 0;
};

} // namespace kvr::netlistdb
