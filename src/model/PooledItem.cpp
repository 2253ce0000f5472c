#include <netlistdb/PooledItem.h>

#include "memory/SmallObjects.h"

namespace kvr::netlistdb {

void *ItemMemory::allocate(std::size_t size)
{
    return memory::allocateObject(size);
}

void ItemMemory::free(void *item, std::size_t size) noexcept
{
    memory::freeObject(item, size);
}

} // namespace kvr::netlistdb
