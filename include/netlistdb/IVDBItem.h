#pragma once

#include <netlistdb/Export.h>

#include <cstdint>
#include <string>

namespace kvr::netlistdb {

/// Kinds of design items, one bit each, so that a set of kinds is a bit mask.
enum ItemType : std::uint32_t {
    ITEM_NETLIST = 1,       ///< IVDBNetlist
    ITEM_NET = 2,           ///< IVDBNet
    ITEM_PORT = 4,          ///< IVDBPort
    ITEM_INSTANCE = 8,      ///< IVDBInstance
    ITEM_CLOCK_DOMAIN = 16, ///< IClockDomain
    ITEM_NET_BUS = 32,      ///< IVDBNetBus
};

/// Root of every design item: a netlist, net, net bus, port, instance or clock domain.
///
/// Items belong to the database that built them and are read-only once built. They live until their source is reset
/// or the database is destroyed.
class NETLISTDB_EXPORT IVDBItem {
  public:
    virtual ~IVDBItem();
    /// The item's own name, one level, unchanged from the netlist (a clock domain's: with its path). May be empty.
    /// Lives as long as the item. Nets, buses and instances make the string when they are asked for it first; that may
    /// be done from several threads. nameText() reads millions of names without making them strings.
    /// @throws std::bad_alloc
    virtual const std::string &getName() const = 0;
    /// Exactly one bit of ItemType, a constant of the class.
    virtual std::uint32_t getItemType() const = 0;

  protected:
    /// @{
    /// For derived classes alone, so that no object is cut down to its interface.
    IVDBItem() = default;
    IVDBItem(const IVDBItem &) = default;
    IVDBItem &operator=(const IVDBItem &) = default;
    /// @}
};

} // namespace kvr::netlistdb
