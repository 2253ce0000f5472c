#pragma once

#include <netlistdb/Export.h>

#include <cstddef>
#include <new>

namespace kvr::netlistdb {

/// Base of the items that a design has millions of: `new` and `delete` of these and of classes derived from them take
/// memory from slabs, where items lie side by side. Nothing changes for those who make or delete items.
class NETLISTDB_EXPORT PooledItem {
  public:
    /// @throws std::bad_alloc
    static void *operator new(std::size_t size);
    static void operator delete(void *item, std::size_t size) noexcept;

    // Over-aligned derived classes, and items that are made in a place of the caller's.

    static void *operator new(std::size_t size, std::align_val_t alignment) { return ::operator new(size, alignment); }
    static void operator delete(void *item, std::size_t /*size*/, std::align_val_t alignment) noexcept
    {
        ::operator delete(item, alignment);
    }
    static void *operator new(std::size_t /*size*/, void *place) noexcept { return place; }
    static void operator delete(void * /*item*/, void * /*place*/) noexcept {}

  protected:
    PooledItem() = default;
    ~PooledItem() = default;
};

} // namespace kvr::netlistdb
