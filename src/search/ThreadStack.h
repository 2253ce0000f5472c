#pragma once

#include <cstddef>
#include <cstdint>

namespace kvr::netlistdb {

/// Where the stack of the caller is, about as deep as the call itself. Stacks grow towards lower addresses.
inline std::uintptr_t stackPosition()
{
#if defined(__GNUC__)
    // Not the address of a variable: a sanitizer may keep variables elsewhere.
    return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
#else
    const char here = 0;
    return reinterpret_cast<std::uintptr_t>(&here);
#endif
}

/// The lowest address that the stack of the calling thread may grow to. Where it is not known - on another platform, on
/// a coroutine's stack - it is what every stack in use still has. Constant time after a thread's first call.
std::uintptr_t stackEnd();

/// Number of bytes of stack that the caller may still use.
inline std::size_t stackLeft()
{
    const std::uintptr_t here = stackPosition();
    const std::uintptr_t end = stackEnd();
    return here > end ? here - end : 0;
}

} // namespace kvr::netlistdb
