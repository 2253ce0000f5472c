// A file of its own, so that the compiler sees no allocation together with the replaced operators.

#include "tests/unit/database/FailingAllocator.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

/// Allocations left before one fails; negative: none fails.
long g_allocationsLeft = -1;

} // namespace

namespace testsupport {

void failAllocationAfter(long count)
{
    g_allocationsLeft = count;
}

bool allocationHasFailed()
{
    return g_allocationsLeft < 0;
}

void failNoAllocation()
{
    g_allocationsLeft = -1;
}

} // namespace testsupport

void *operator new(std::size_t size)
{
    if (g_allocationsLeft >= 0 && g_allocationsLeft-- == 0) {
        throw std::bad_alloc();
    }
    if (void *memory = std::malloc(size != 0 ? size : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}

void *operator new[](std::size_t size)
{
    return operator new(size);
}

void operator delete(void *memory) noexcept
{
    std::free(memory);
}

void operator delete[](void *memory) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}

void operator delete[](void *memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}
