#pragma once

#include <netlistdb/InstanceNetSet.h>

#include <cstddef>
#include <cstdint>

namespace kvr::netlistdb {

/// Hash of an (instance, net) pair.
struct InstanceNetHash {
    std::size_t operator()(const InstanceNet &pair) const
    {
        const auto instance = reinterpret_cast<std::uintptr_t>(pair.first);
        const auto net = reinterpret_cast<std::uintptr_t>(pair.second);
        // The upper bits of the product depend on every bit of both addresses.
        return static_cast<std::size_t>((((net >> 4) ^ (instance << 7)) * 0x9E3779B97F4A7C15u) >> 20);
    }
};

} // namespace kvr::netlistdb
