#pragma once

#include <array>
#include <cstddef>

namespace kvr::netlistdb {

/// Places in the block of live-item counters.
enum class LiveItem : std::size_t { LineInfo, Netlist, Instance, Net, NetBus, Port };

/// The process-wide counters: made zero-filled at first use and never freed, so that items may be deleted at any time
/// while the process ends.
std::array<unsigned, 6> &liveItemBlock();

// An item's constructor counts it as its last step, so that one which throws leaves no trace.

inline void countItem(LiveItem kind)
{
    ++liveItemBlock()[static_cast<std::size_t>(kind)];
}

inline void uncountItem(LiveItem kind)
{
    --liveItemBlock()[static_cast<std::size_t>(kind)];
}

} // namespace kvr::netlistdb
