// A file of its own, so that the compiler sees no allocation together with the replaced operators.

#include "tests/support/failing_allocator/FailingAllocator.h"

#include <cstddef>
#include <cstdlib>

namespace {

bool g_isArmed = false;
bool g_hasFailed = false;
long g_allocationsLeft = 0; ///< before one fails
testsupport::Failures g_failures = testsupport::Failures::ONE;

void *allocateOrNull(std::size_t size) noexcept
{
    if (g_isArmed && g_allocationsLeft-- == 0) {
        g_hasFailed = true;
        g_isArmed = g_failures == testsupport::Failures::ALL;
        g_allocationsLeft = 0;
        return nullptr;
    }
    return std::malloc(size != 0 ? size : 1);
}

void *allocate(std::size_t size)
{
    if (void *memory = allocateOrNull(size)) {
        return memory;
    }
    throw std::bad_alloc();
}

} // namespace

namespace testsupport {

void failAllocationAfter(long count, Failures failures)
{
    g_isArmed = true;
    g_hasFailed = false;
    g_allocationsLeft = count;
    g_failures = failures;
}

bool allocationHasFailed()
{
    return g_hasFailed;
}

void failNoAllocation()
{
    g_isArmed = false;
}

} // namespace testsupport

void *operator new(std::size_t size)
{
    return allocate(size);
}

void *operator new[](std::size_t size)
{
    return allocate(size);
}

void *operator new(std::size_t size, const std::nothrow_t & /*tag*/) noexcept
{
    return allocateOrNull(size);
}

void *operator new[](std::size_t size, const std::nothrow_t & /*tag*/) noexcept
{
    return allocateOrNull(size);
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

void operator delete(void *memory, const std::nothrow_t & /*tag*/) noexcept
{
    std::free(memory);
}

void operator delete[](void *memory, const std::nothrow_t & /*tag*/) noexcept
{
    std::free(memory);
}
