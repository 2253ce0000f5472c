#include "SlabAllocator.h"

#include "memory/SmallObjects.h"

namespace Verific {

void *allocateElements(std::size_t size)
{
    return kvr::memory::allocateObject(size);
}

void freeElements(void *elements, std::size_t size) noexcept
{
    kvr::memory::freeObject(elements, size);
}

} // namespace Verific
