#pragma once

#include <netlistdb/IDesignDatabase.h>
#include <netlistdb/InstanceNetSet.h>

#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace Verific {
class Instance;
class Net;
} // namespace Verific

namespace kvr::netlistdb {

class VDBObjectPool;

/// The design database: builds the item trees of both sources, and finds clocks and names in them.
///
/// Owns the netlists, the instance trees, the clock domains, the caches and, with keepSourceNetlists, the working
/// copies of the source netlists.
class NETLISTDB_EXPORT DesignDatabase : public IDesignDatabase {
  public:
    /// A net as seen in one instance: the key of every clock query.
    using InstanceNet = netlistdb::InstanceNet;
    /// From a clock domain (null: no clock) to the pairs known to lead to it.
    using DrivingClockCache = std::map<IClockDomain *, InstanceNetSet>;

    /// Makes an empty database. With @p keepSourceNetlists the working copy of each import is kept and clock domains
    /// are analysed; without it a tree costs less memory and every clock query returns null.
    explicit DesignDatabase(bool keepSourceNetlists);
    /// Frees everything. Also clears the netlist database's process-wide table of source files: positions of netlist
    /// objects are unknown from then on, those of items stay. With keepSourceNetlists it clears the library set too.
    /// The embedded netlist database keeps the netlists alive that working copies of other databases use; a commercial
    /// one does not, and the databases of a process must then be destroyed together, at its end.
    ~DesignDatabase() override;
    DesignDatabase(const DesignDatabase &) = delete;
    DesignDatabase &operator=(const DesignDatabase &) = delete;

    bool parseElaboratedNetlist(Verific::Netlist *netlist) override;
    bool parseElaboratedNetlistFromFile(const std::string &path) override;
    bool parsePostMapNetlist(Verific::Netlist *netlist) override;
    bool parsePostMapNetlistFromFile(const std::string &path) override;
    bool load(const std::string &path) override;
    bool save(const std::string &path, bool flag) override;
    bool reset(SOURCE_TYPE type) override;
    bool isSourceLoaded(SOURCE_TYPE type) const override;
    bool getCheckSum(unsigned char *buffer) override;
    IVDBNetlist *getTopModule(SOURCE_TYPE type) override;
    IVDBInstance *getRoot(SOURCE_TYPE type) override;
    std::vector<IVDBInstance *> getViewInstances(IVDBNetlist *netlist) override;
    std::vector<IVDBInstance *> getChildInstances(IVDBNetlist *netlist) override;
    IVDBResultSet *search(const VDBSearchParam &param) override;
    IClockDomain *findDrivingClockDomains(IVDBInstance *inst, IVDBNet *net, SOURCE_TYPE type) override;
    std::vector<IClockDomain *> listAllClockDomains(SOURCE_TYPE type) const override;

    // The steps of the imports.

    /// Builds one module with its buses, nets and ports from @p netlist and puts it on the elaborated or the post-map
    /// list. The two names are fall-backs for a netlist without cell or library. The database owns the result.
    /// @throws std::invalid_argument "netlist is nullptr", std::out_of_range "stoi", std::bad_alloc; nothing is left
    ///         behind then.
    IVDBNetlist *buildNetlist(Verific::Netlist *netlist, bool elaborated, const std::string &cellName,
                              const std::string &libraryName);
    /// Builds every other module below @p top and unfolds the elaborated instance tree. False when some instance names
    /// a view outside the hierarchy; the tree built so far stays.
    bool parseHier(Verific::Netlist *top, IVDBNetlist *topModule);

    // The steps of clock-domain analysis. Look-ups do not take longer where there are more nets.

    /// Records that @p key leads to @p domain (null: to no clock). A pair may be recorded
    /// under several domains.
    void addCache(IClockDomain *domain, InstanceNet key);
    /// The first domain, in ascending order of address with null first, under which @p key is recorded; null also when
    /// it is not recorded at all.
    IClockDomain *isCached(InstanceNet key);
    /// The same as a position in the cache, its end when @p key is not recorded.
    DrivingClockCache::iterator findCachedResult(InstanceNet key);
    /// The first record of the source's table with exactly this net and instance, or null.
    IClockDomain *getParsedClockDomain(IVDBInstance *inst, IVDBNet *net, SOURCE_TYPE type);
    /// Records every clock net of a post-map netlist as a domain under the root. Walks all pins of the netlist.
    /// @throws std::invalid_argument "VDBClockDomain: net is nullptr" when a clock net has no item.
    void parseClkDomainPostMap(Verific::Netlist *netlist);
    /// Traces a post-map net back to the first sequential cell; null when there is none or an argument is null. Walks
    /// the fan-in cone as far as it is not in the cache.
    IClockDomain *findDrivingClockDomainPostMap(IVDBInstance *inst, IVDBNet *net);
    /// Records the highest net of every register clock of the elaborated tree as a domain. @p netlist is not read.
    /// Walks the instances of user modules.
    /// @throws std::invalid_argument "VDBClockDomain: net is nullptr" when a clock net has no item.
    void parseClkDomainElab(Verific::Netlist *netlist);
    /// Climbs from @p net in @p inst through module ports as far as it leads, at most up to @p stop; returns the
    /// highest pair found, or the arguments. Takes time in proportion to the ports of the instances climbed through.
    InstanceNet getRootClk(IVDBInstance *inst, IVDBNet *net, IVDBInstance *stop);
    /// Traces an elaborated net back to the first register; null when there is none or an argument is null, and when
    /// the walk has met more than 10,240 pairs again. Walks the fan-in cone as far as its cells have no recorded
    /// result.
    IClockDomain *findDrivingClockDomainElab(IVDBInstance *inst, IVDBNet *net);

    // For diagnosis.

    /// From the built items of a source to the objects they were made from, or null for an unknown type. Owned by the
    /// database. Internal type.
    VDBObjectPool *objectPool(SOURCE_TYPE type) const;
    /// The results recorded for each (instance, net), of both sources. Lives as long as the database; queries add to
    /// it.
    const DrivingClockCache &drivingClockCache() const;
    /// The results recorded for operator and primitive instances of the elaborated source (null: no clock), in
    /// ascending order of instance address. A new list.
    std::vector<std::pair<IVDBInstance *, IClockDomain *>> elaboratedInstanceCache() const;
    /// The kept working copy of a source, or null. Owned by the database.
    Verific::Netlist *workingCopy(SOURCE_TYPE type) const;

    // For analyses that read the working copy beside the items. All return null for what is not known, and without
    // keepSourceNetlists. Constant time.

    /// The item that was made from a net of the working copy or of a netlist below it.
    IVDBNet *netItem(const Verific::Net *net, SOURCE_TYPE type) const;
    /// The net that an item of the source was made from.
    const Verific::Net *sourceNet(const IVDBNet *net, SOURCE_TYPE type) const;
    /// The instance that an item of the source was made from; null for the root.
    const Verific::Instance *sourceInstance(const IVDBInstance *inst, SOURCE_TYPE type) const;
    /// Changes whenever items of the source are made or deleted: what was found out about them holds as long as this
    /// stays the same. 0 for an unknown type.
    std::uint64_t generation(SOURCE_TYPE type) const;

  private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace kvr::netlistdb
