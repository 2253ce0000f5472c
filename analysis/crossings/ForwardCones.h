#pragma once

#include "analysis/crossings/Unfolding.h"

#include <cstdint>
#include <optional>
#include <unordered_set>
#include <vector>

namespace kvr::netlistdb::analysis {

/// True when some path leads from @p start to a register pin of @p clock other than @p pin. Walks only what reaches
/// registers of that clock.
bool reachesAnother(Unfolding &design, const std::vector<Node> &start, std::uint32_t clock, const PinPlace &pin);

/// Where bits that were synchronized each by itself come together again.
struct Meeting {
    bool meets = false;
    Node node = NONE; ///< the first net where the bit meets another one
};

/// For each of several bits, given by the outputs of its synchronizer, whether logic combines it with another one
/// before the next register.
std::vector<Meeting> findMeetings(Unfolding &design, const std::vector<std::vector<Node>> &bits);

} // namespace kvr::netlistdb::analysis
