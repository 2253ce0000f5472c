#pragma once

#include <cstdint>
#include <netlistdb/IVDBItem.h>
#include <string_view>

namespace kvr::netlistdb::tool {

/// Which kinds of items a result shows; all of them by default.
class Kinds {
  public:
    /// @p type is a type code of IVDBItem.
    bool has(std::uint32_t type) const { return all() || (m_types & type) != 0; }
    bool all() const { return m_types == 0; }
    /// All of them as a mask of type codes.
    std::uint32_t mask() const { return all() ? ITEM_INSTANCE | ITEM_NET | ITEM_NET_BUS : m_types; }
    void add(std::uint32_t type) { m_types |= type; }
    /// Adds `instance`, `net` or `bus`.
    void add(std::string_view name)
    {
        add(name == "instance" ? ITEM_INSTANCE : name == "bus" ? ITEM_NET_BUS : ITEM_NET);
    }

  private:
    std::uint32_t m_types = 0;
};

} // namespace kvr::netlistdb::tool
