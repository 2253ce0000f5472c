#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>

namespace Verific {
class Instance;
class Netlist;
} // namespace Verific

namespace kvr::netlistdb {
class IVDBInstance;
class IVDBNetlist;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::tool {

/// The netlists of the netlist database from which a design was imported, found by the names of their items.
class SourceNetlists {
  public:
    /// @p top and what is below it must outlive the object.
    explicit SourceNetlists(const Verific::Netlist &top);

    /// From now on @p copy stands for the top, which is @p module. Must outlive the object.
    void replaceTop(const IVDBNetlist &module, const Verific::Netlist &copy);

    /// The netlist behind @p module, or null. Operators and primitives share names: any of those with this one.
    const Verific::Netlist *of(const IVDBNetlist &module) const;
    /// The instance behind @p instance; null at the top.
    const Verific::Instance *of(const IVDBInstance &instance) const;
    bool isBlackBox(const IVDBNetlist &module) const;
    /// What the user calls @p module.
    std::string userNameOf(const IVDBNetlist &module) const;

  private:
    using Key = std::pair<std::string, std::string>; ///< of library and cell

    std::map<Key, const Verific::Netlist *> m_netlists;
    std::set<Key> m_blackBoxes;
};

} // namespace kvr::netlistdb::tool
