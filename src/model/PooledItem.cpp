#include <netlistdb/PooledItem.h>

#include "memory/SmallObjects.h"

namespace kvr::netlistdb {

void *PooledItem::operator new(std::size_t size)
{
    return memory::allocateObject(size);
}

void PooledItem::operator delete(void *item, std::size_t size) noexcept
{
    memory::freeObject(item, size);
}

} // namespace kvr::netlistdb
