#pragma once

#include <netlistdb/Export.h>

#include <cstddef>
#include <new>

namespace kvr::netlistdb {

/// Slabs for the memory of items, where they lie side by side.
class NETLISTDB_EXPORT ItemMemory {
  public:
    /// Memory for an item of @p size bytes.
    /// @throws std::bad_alloc
    static void *allocate(std::size_t size);
    /// Takes back what allocate() returned for an item of @p size bytes; null is nothing.
    static void free(void *item, std::size_t size) noexcept;
};

/// An item as @p Interface shows it, of a kind that a design has millions of: `new` and `delete` of such classes, and
/// of those derived from them, take memory from slabs. Nothing changes for those who make or delete items.
///
/// It stands between the interface and its implementation, not beside it: dynamic_cast takes longer to an object with
/// more than one chain of bases.
template <typename Interface> class NETLISTDB_EXPORT PooledItem : public Interface {
  public:
    /// Memory for an item of @p size bytes.
    /// @throws std::bad_alloc
    static void *operator new(std::size_t size) { return ItemMemory::allocate(size); }
    /// Takes back the memory of an item of @p size bytes.
    static void operator delete(void *item, std::size_t size) noexcept { ItemMemory::free(item, size); }
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
};

} // namespace kvr::netlistdb
