#pragma once

#include <cstddef>
#include <cstring>

namespace testsupport {

/// Position of a virtual operation among those of its class, the two destructor slots included. Reads the pointer to
/// member as GCC and Clang lay it out.
template <typename Member> std::size_t virtualSlot(Member member)
{
    std::size_t offset = 0;
    static_assert(sizeof(member) >= sizeof(offset));
    std::memcpy(&offset, &member, sizeof(offset));
    return (offset - 1) / sizeof(void *);
}

} // namespace testsupport
