#pragma once

#include "analysis/DesignModel.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis {

/// A clock of the whole design that reaches a net, or is reached by one.
struct BoundClock {
    std::uint32_t clock;
    std::uint32_t cells; ///< of a launch
    bool isNetwork;      ///< of a launch: the clock itself
    std::uint8_t roles;  ///< of a capture: mask of CaptureRole
};

/// The set of a net of an occurrence, in the terms of the whole design.
struct BoundSet {
    std::vector<BoundClock> clocks; ///< those through registers first, each by number
    std::uint32_t flags = 0;
};

/// What reaches net @p net of @p context.
BoundSet boundLaunch(const DesignModel &design, const Context &context, std::uint32_t net);
/// What net @p net of @p context reaches.
BoundSet boundCapture(const DesignModel &design, const Context &context, std::uint32_t net);

} // namespace kvr::netlistdb::analysis
