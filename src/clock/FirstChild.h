#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb {

class ItemLookup;
class IVDBInstance;
class IVDBNetlist;

/// Finds the sub-instance of a name: the first of that name in its parent's list.
///
/// A hash table of names for each module with many instances. The children that an import made have the same order
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
    class NameTable {
      public:
        NameTable(const IVDBInstance *parent, const ItemLookup &items);
        const IVDBInstance *parent() const { return m_parent; }
        /// Number of children if the name is not among them.
        std::size_t placeOf(std::string_view name) const;
        std::size_t size() const { return m_size; }

      private:
        std::size_t slotOf(std::string_view name) const;

        const IVDBInstance *m_parent;
        std::size_t m_size = 0;             ///< children in the table
        std::vector<std::uint32_t> m_slots; ///< place plus one, 0 when free; a power of two, at most half in use
    };

    std::unordered_map<const IVDBNetlist *, NameTable> m_tables;
};

} // namespace kvr::netlistdb
