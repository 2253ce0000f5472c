#pragma once

#include <netlistdb/Export.h>

#include <cstddef>
#include <new>

namespace kvr::netlistdb {

/// Base of the items that a design has millions of: `new` and `delete` of these and of classes derived from them take
/// memory from slabs, where items lie side by side. Nothing changes for those who make or delete items.
class NETLISTDB_EXPORT PooledItem {
  public:
    /// Memory for an item of @p size bytes.
    /// @throws std::bad_alloc
    static void *operator new(std::size_t size);
    /// Takes back the memory of an item of @p size bytes.
    static void operator delete(void *item, std::size_t size) noexcept;
    /// Memory for an item of a derived class with an alignment beyond the usual. From the heap.
    /// @throws std::bad_alloc
    static void *operator new(std::size_t size, std::align_val_t alignment) { return ::operator new(size, alignment); }
    /// Takes that back.
    static void operator delete(void *item, std::size_t /*size*/, std::align_val_t alignment) noexcept
    {
        ::operator delete(item, alignment);
    }
    /// For an item that is made in @p place, which is the caller's.
    static void *operator new(std::size_t /*size*/, void *place) noexcept { return place; }
    /// Does nothing: the place is the caller's.
    static void operator delete(void * /*item*/, void * /*place*/) noexcept {}

  protected:
    PooledItem() = default;
    ~PooledItem() = default;
};

} // namespace kvr::netlistdb
