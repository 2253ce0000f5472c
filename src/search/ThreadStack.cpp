#include "search/ThreadStack.h"

#include <algorithm>

#if defined(__GLIBC__)
#include <pthread.h>
#endif

namespace kvr::netlistdb {

namespace {

/// Taken to be left where the bounds of a stack are not known: half the stack of a thread on the platforms with the
/// smallest ones.
constexpr std::size_t assumedLeft = std::size_t{256} * 1024;

struct StackBounds {
    std::uintptr_t low = 0;
    std::uintptr_t high = 0;
};

StackBounds boundsOfThisThread()
{
    StackBounds bounds;
#if defined(__GLIBC__)
    // The main stack grows on demand, whatever its limit: a process has at least 128 MiB of address space below it.
    constexpr std::size_t longest = std::size_t{96} * 1024 * 1024;
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) == 0) {
        void *low = nullptr;
        std::size_t size = 0;
        if (pthread_attr_getstack(&attributes, &low, &size) == 0) {
            bounds.high = reinterpret_cast<std::uintptr_t>(low) + size;
            bounds.low = bounds.high - std::min(size, longest);
        }
        pthread_attr_destroy(&attributes);
    }
#endif
    return bounds;
}

} // namespace

std::uintptr_t stackEnd()
{
    // Asked once per thread: for the main thread the C library reads the memory map of the process.
    thread_local const StackBounds bounds = boundsOfThisThread();
    const std::uintptr_t here = stackPosition();
    if (here >= bounds.low && here < bounds.high) {
        return bounds.low;
    }
    return here - std::min<std::uintptr_t>(here, assumedLeft);
}

} // namespace kvr::netlistdb
