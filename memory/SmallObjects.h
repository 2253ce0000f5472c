#pragma once

#include <cstddef>

namespace kvr::memory {

/// Memory for an object of that size from the slabs of this shared library, or from the heap when it is large. Builds
/// with a sanitizer take all of it from the heap, where each object is watched by itself.
/// @throws std::bad_alloc
void *allocateObject(std::size_t size);
/// Takes back what allocateObject() returned for that size; null is nothing.
void freeObject(void *object, std::size_t size) noexcept;

} // namespace kvr::memory
