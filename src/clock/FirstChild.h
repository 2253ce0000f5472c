#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>

namespace kvr::netlistdb {

class ItemLookup;
class IVDBInstance;
class IVDBNetlist;

/// Finds the sub-instance of a name: the first of that name in its parent's list.
///
/// A memo of names for each module with many instances. The children that an import made have the same order
/// and names below every instance of one module, and what a caller adds comes behind them: one table serves all the
/// instances. The children of other parents, which a caller may have made in any order, are walked.
class FirstChild {
  public:
    /// Null when there is none of that name.
    IVDBInstance *find(const IVDBInstance *parent, std::string_view name, const ItemLookup &items,
                       const IVDBInstance *root);
    /// Forgets the tables, as their instances may be gone.
    void clear() { m_tables.clear(); }

  private:
    /// The first places of the names of the children that an import made below one instance of a module.
    struct NameTable {
        NameTable(const IVDBInstance *of, const ItemLookup &items);

        const IVDBInstance *parent;
        std::unordered_map<std::string_view, std::size_t> places;
    };

    std::unordered_map<const IVDBNetlist *, NameTable> m_tables;
};

} // namespace kvr::netlistdb
