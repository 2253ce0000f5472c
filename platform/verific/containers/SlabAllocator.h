#pragma once

#include "Export.h"

#include <cstddef>

namespace Verific {

/// Memory for the elements of a small container, from the slabs of the objects; that of a large one is from the heap.
/// @throws std::bad_alloc
VERIFIC_EXPORT void *allocateElements(std::size_t size);
/// Takes back what allocateElements() returned for that size.
VERIFIC_EXPORT void freeElements(void *elements, std::size_t size) noexcept;

/// Standard allocator for containers that there are as many of as objects.
template <typename Element> class SlabAllocator {
  public:
    using value_type = Element;

    SlabAllocator() = default;
    template <typename Other> SlabAllocator(const SlabAllocator<Other> & /*other*/) {}

    Element *allocate(std::size_t count) { return static_cast<Element *>(allocateElements(count * SIZE)); }
    void deallocate(Element *elements, std::size_t count) noexcept { freeElements(elements, count * SIZE); }

  private:
    static constexpr std::size_t SIZE = sizeof(Element); // NOLINT(bugprone-sizeof-expression): pointers are meant
};

template <typename A, typename B> bool operator==(const SlabAllocator<A> & /*a*/, const SlabAllocator<B> & /*b*/)
{
    return true;
}
template <typename A, typename B> bool operator!=(const SlabAllocator<A> & /*a*/, const SlabAllocator<B> & /*b*/)
{
    return false;
}

} // namespace Verific
