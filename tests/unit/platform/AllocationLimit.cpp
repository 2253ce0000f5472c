#include "AllocationLimit.h"

#include <cstdlib>
#include <new>

namespace {

long allocationsLeft = -1; ///< negative: no limit

} // namespace

namespace platformtest {

void limitAllocations(long count)
{
    allocationsLeft = count;
}

void liftAllocationLimit()
{
    allocationsLeft = -1;
}

} // namespace platformtest

// Every `new` and `delete` of the program, those in the shared libraries included, comes here.

void *operator new(std::size_t size)
{
    if (allocationsLeft == 0) {
        throw std::bad_alloc();
    }
    if (allocationsLeft > 0) {
        --allocationsLeft;
    }
    if (void *memory = std::malloc(size != 0 ? size : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}

void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    try {
        return operator new(size);
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

void *operator new[](std::size_t size)
{
    return operator new(size);
}

void operator delete(void *memory) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete(void *memory, const std::nothrow_t &) noexcept
{
    std::free(memory);
}

void operator delete[](void *memory) noexcept
{
    std::free(memory);
}

void operator delete[](void *memory, std::size_t) noexcept
{
    std::free(memory);
}
