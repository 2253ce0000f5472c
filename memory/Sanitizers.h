#pragma once

#include <cstddef>

#if defined(__has_feature)
#define KVR_HAS_FEATURE(feature) __has_feature(feature)
#else
#define KVR_HAS_FEATURE(feature) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || KVR_HAS_FEATURE(address_sanitizer)
#include <sanitizer/asan_interface.h>
#define KVR_HAS_ADDRESS_SANITIZER 1
#else
#define KVR_HAS_ADDRESS_SANITIZER 0
#endif

#if KVR_HAS_ADDRESS_SANITIZER || defined(__SANITIZE_THREAD__) || KVR_HAS_FEATURE(thread_sanitizer) ||                  \
    KVR_HAS_FEATURE(memory_sanitizer)
#define KVR_HAS_SANITIZER 1
#else
#define KVR_HAS_SANITIZER 0
#endif

namespace kvr::memory {

inline constexpr bool HAS_ADDRESS_SANITIZER = KVR_HAS_ADDRESS_SANITIZER != 0;
/// Whether a sanitizer watches over each object by itself.
inline constexpr bool IS_SANITIZED = KVR_HAS_SANITIZER != 0;

/// Has the address sanitizer report every use of these bytes.
inline void poison([[maybe_unused]] const volatile void *first, [[maybe_unused]] std::size_t size)
{
#if KVR_HAS_ADDRESS_SANITIZER
    __asan_poison_memory_region(first, size);
#endif
}

/// Ends that.
inline void unpoison([[maybe_unused]] const volatile void *first, [[maybe_unused]] std::size_t size)
{
#if KVR_HAS_ADDRESS_SANITIZER
    __asan_unpoison_memory_region(first, size);
#endif
}

} // namespace kvr::memory

#undef KVR_HAS_FEATURE
