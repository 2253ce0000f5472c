#include "memory/SmallObjects.h"

#include "memory/Sanitizers.h"
#include "memory/SlabPool.h"

#include <new>

namespace kvr::memory {

namespace {

/// Never destroyed: objects may be deleted at any time while the process ends.
SlabPool &pool()
{
    static SlabPool &all = *new SlabPool;
    return all;
}

bool isForSlabs(std::size_t size)
{
    return !IS_SANITIZED && size != 0 && size <= SlabPool::LARGEST;
}

} // namespace

void *allocateObject(std::size_t size)
{
    return isForSlabs(size) ? pool().allocate(size) : ::operator new(size);
}

void freeObject(void *object, std::size_t size) noexcept
{
    if (object == nullptr) {
        return;
    }
    if (isForSlabs(size)) {
        pool().free(object, size);
    } else {
#ifdef __cpp_sized_deallocation
        ::operator delete(object, size); // the address sanitizer compares the size
#else
        ::operator delete(object);
#endif
    }
}

} // namespace kvr::memory
