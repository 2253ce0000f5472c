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
/// The words that this library uses:
///
/// - *Netlist*: the contents of one design unit in the netlist database underneath, with its ports, nets and instances.
/// - *Module*: the item for a netlist (IVDBNetlist). All instances of a netlist share one module.
/// - *Instance*: one occurrence of a module in the unfolded design (IVDBInstance). A module that is used ten times has
///   ten instances, each with its own path. The *root* is the instance of the top module and has no name.
/// - *Net*: a signal of a module (IVDBNet), in most cases one bit. Since modules are shared, a signal of the design is
/// a
///   pair of an instance and a net.
/// - *Bus*: a named vector of nets (IVDBNetBus), declared in the source or made up from nets called `name[0]`,
///   `name[1]`, and so on. Bits are shown as declared, `[7:0]` or `[0:7]`.
/// - *Port*: a connection point of a module (IVDBPort). The connected pin of an instance has no item.
/// - *Item*: any of these, or a clock domain (IVDBItem).
/// - *Source*: one of the two netlists of a design, in one of two *forms*. The *elaborated* form has user modules down
/// to
///   generic operators, primitives and registers, and is unfolded to its leaves. The *post-map* form has the cells of a
///   device below a flat top.
/// - *Path*: the names of the instances from the root down, joined with "/". *Full name* of a net: the path of an
///   instance, "/" and the name of the net. Names are never escaped and may hold any character.
/// - *Register*, *sequential cell*: a cell that holds state and has a clock. *Driver* of a net: the instance with an
///   output on it. *Fan-in cone*: all that leads to a net, back to registers and input ports.
/// - *Clock domain*: a clock net, seen in an instance (IClockDomain); it drives the nets whose fan-in begins at the
///   registers that it clocks.
/// - *Root clock*: the highest net that feeds a clock through module ports.
/// - *User-declared*: having a position in the source text. Netlists that tools write hold thousands of nets that
/// nobody
///   declared.
/// - *Selectable*: free to be probed by an on-chip debugger, being neither protected nor a whole memory.
/// - *Working copy*: the copy of the top netlist that an import works on, kept for clock queries when the database is
///   made with keepSourceNetlists.
///
/// Everything runs on the caller's thread. Imports, queries, reset and destruction must not overlap on one database.
/// The netlist database underneath has process-wide tables (library set, source files): imports, restores, resets and
/// destruction of any two databases must not overlap in one process either.
class NETLISTDB_EXPORT IDesignDatabase {
  public:
    /// The kinds of source netlist. Any other value counts as a source that is absent.
    enum SOURCE_TYPE : std::uint32_t {
        SOURCE_ELABORATED = 1, ///< user modules down to generic operators, primitives and registers
        SOURCE_POST_MAP = 2,   ///< a flat top of device primitive cells
    };

    /// Deletes every item of both sources, those of replaced trees too. Delete result sets first.
    virtual ~IDesignDatabase();

    /// Imports an elaborated netlist, which stays the caller's. Its top level is copied and not needed after the call.
    /// The netlists below are shared, not copied: a database that keeps source netlists refers to them until the source
    /// is reset (a replaced tree: until the database is destroyed), and they must live as long. The embedded netlist
    /// database sees to that by itself, unless one of them is deleted on its own; with a commercial one, it is up to
    /// the caller. The source counts as loaded even when the result is false: some instance names a view outside the
    /// netlist's hierarchy. No module may contain itself. A source that is loaded already is not emptied first: the
    /// modules and clock domains of the replaced tree are deleted by the next reset of the source, its instances with
    /// the database. What a throwing import built stays until the source is reset. Costs time and memory in proportion
    /// to the unfolded design.
    /// @throws std::invalid_argument "netlist is nullptr" (nothing changes then), std::out_of_range "stoi" when a bit
    ///         subscript exceeds a signed 32-bit integer, std::bad_alloc.
    virtual bool parseElaboratedNetlist(Verific::Netlist *netlist) = 0;
    /// Restores a saved netlist and imports it; false when the file @p path cannot be restored (nothing changes then)
    /// or when the import returns false. Deletes the restored top netlist afterwards. The netlists below it are in the
    /// global library set; the embedded netlist database deletes them when the source no longer needs them.
    /// @throws as parseElaboratedNetlist; the restored netlist then stays in the global library set.
    virtual bool parseElaboratedNetlistFromFile(const std::string &path) = 0;
    /// Imports a post-map netlist: its top level of instances alone is unfolded. As parseElaboratedNetlist otherwise.
    virtual bool parsePostMapNetlist(Verific::Netlist *netlist) = 0;
    /// As parseElaboratedNetlistFromFile, for the post-map source.
    virtual bool parsePostMapNetlistFromFile(const std::string &path) = 0;
    /// Does nothing and returns true.
    virtual bool load(const std::string &path) = 0;
    /// Does nothing, touches no file and returns true.
    virtual bool save(const std::string &path, bool flag) = 0;
    /// Frees one source's tree and clock domains; every pointer into it is dead afterwards. So are the modules and
    /// clock domains of trees that imports over the loaded source have replaced. False when that source is not loaded.
    /// The other source stays as it is.
    virtual bool reset(SOURCE_TYPE type) = 0;
    /// Whether the source has a top module: an import got at least that far, and no reset has followed.
    virtual bool isSourceLoaded(SOURCE_TYPE type) const = 0;
    /// Does nothing, leaves @p buffer alone and returns false; VDBHelper::computeSHA256CheckSum gives the checksum of a
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
    /// database. Walks the fan-in cone once and remembers the result, so that a later query stops where an earlier one
    /// passed.
    virtual IClockDomain *findDrivingClockDomains(IVDBInstance *inst, IVDBNet *net, SOURCE_TYPE type) = 0;
    /// Every clock domain of a source, in ascending order of address: a new list of records that the database owns.
    virtual std::vector<IClockDomain *> listAllClockDomains(SOURCE_TYPE type) const = 0;
};

} // namespace kvr::netlistdb
