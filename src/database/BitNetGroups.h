#pragma once

#include "database/BitSubscript.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Verific {
class Net;
}

namespace kvr::netlistdb {

/// The nets of one netlist whose names end in a bit subscript, grouped by the name before it.
///
/// Keeps views of the names, not copies: the nets must outlive it.
class BitNetGroups {
  public:
    struct Bit {
        int index;
        const Verific::Net *net;
    };
    struct Group {
        std::string_view baseName;
        std::vector<Bit> bits; ///< ascending by index; equal indices in the order of adding
        int busWidth;          ///< width of the bus to make of the group, 0 for none
        std::size_t members;   ///< how many of the first bits become its members
    };

    /// Adds @p net, whose name ends in @p subscript.
    void add(std::string_view name, BitSubscript subscript, const Verific::Net *net);

    /// Calls @p visit(const Group &) for every group, in ascending byte order of base name.
    template <typename Visit> void forEach(Visit visit) const
    {
        const Layout layout = sorted();
        Group group;
        for (const std::uint32_t id : layout.order) {
            const auto first = layout.bits.begin() + static_cast<std::ptrdiff_t>(layout.begins[id]);
            group.baseName = m_baseNames[id];
            group.bits.assign(first, first + static_cast<std::ptrdiff_t>(m_counts[id]));
            findBus(group);
            visit(static_cast<const Group &>(group));
        }
    }

  private:
    struct Entry {
        std::uint32_t group;
        Bit bit;
    };
    struct Layout {
        std::vector<std::uint32_t> order; ///< group numbers by base name
        std::vector<std::size_t> begins;  ///< of each group, in bits
        std::vector<Bit> bits;
    };

    Layout sorted() const;
    /// Sorts the bits and finds the unbroken run from 0 up.
    static void findBus(Group &group);

    std::vector<Entry> m_entries;
    std::vector<std::string_view> m_baseNames;
    std::vector<std::size_t> m_counts;
    std::unordered_map<std::string_view, std::uint32_t> m_groups;
};

} // namespace kvr::netlistdb
