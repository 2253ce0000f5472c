#pragma once

#include <netlistdb/Export.h>

#include <cstdint>
#include <string>

namespace kvr::netlistdb {

class IVDBItem;

/// Order of an instance's buses and nets. Any other non-zero value behaves as ascending.
enum SortOrder : std::uint32_t {
    SORT_NONE = 0,       ///< as the netlist gives them: buses, then nets
    SORT_ASCENDING = 1,  ///< small first
    SORT_DESCENDING = 2, ///< large first
};

/// What to search: where the walk starts, which kinds of item it visits, what it leaves out, and the text that nets
/// are matched against. Copied by its receivers; the start item is not owned and must outlive the search.
class NETLISTDB_EXPORT VDBSearchParam {
  public:
    /// Without a start item: an empty search.
    VDBSearchParam();
    /// Copies every field; the start item is shared.
    VDBSearchParam(const VDBSearchParam &other);
    virtual ~VDBSearchParam();
    /// Copies every field; the start item is shared.
    VDBSearchParam &operator=(const VDBSearchParam &other);

    /// Mask of ItemType: instances (without: the start instance and its members alone), nets, net buses, ports. The
    /// other bits are not consulted.
    std::uint32_t itemTypes = 0xFFFF;
    /// Without it every net and bus matches, and `pattern` is ignored.
    bool filterByName = false;
    /// `pattern` is a regular expression (ECMAScript) instead of plain text.
    bool useRegex = false;
    /// Looked for anywhere in the full name of a net or bus.
    std::string pattern;
    /// Upper and lower case count as the same when `pattern` is looked for.
    bool ignoreCase = false;
    /// Leaves out every instance whose module has no source position, with all that lies below it.
    bool userModulesOnly = false;
    /// Lists an instance whose module has no source position without its members, and of its children only the members
    /// of those whose module has one.
    bool collapseNonUserModules = false;
    /// Leaves out nets and buses without source position.
    bool userNetsOnly = false;
    /// Leaves out the ports of instances whose module has no source position.
    bool userPortsOnly = false;
    /// Carried, not consulted.
    bool spareFlag = false;
    /// Enables the two orders below.
    bool sortItems = false;
    /// Order of each instance's buses and nets by name: numbers by value, letters without case.
    SortOrder nameOrder = SORT_NONE;
    /// Order of the same list by width; where both are given, this one holds.
    SortOrder widthOrder = SORT_NONE;
    /// Carried, not consulted.
    std::uint32_t spareValue = 0;
    /// The instance where the walk starts; anything else gives an empty search.
    IVDBItem *startItem = nullptr;
};

} // namespace kvr::netlistdb
