#pragma once

#include "analysis/probe/BitGraph.h"

#include <cstdint>
#include <functional>
#include <string_view>

namespace kvr::netlistdb::analysis::probe {

/// Calls @p visit with each declared name of each net of the unfolded design: the names of its instances and its own,
/// from the top down, as a hash. Levels may be separated by "/", "." or blanks, and a backslash in front of a name does
/// not count, so that a net that was flattened has the name that it had before.
void forEachName(const BitGraph &graph,
                 const std::function<void(std::uint32_t occurrence, std::uint32_t net, std::uint64_t name)> &visit);

/// The hash of one such name.
std::uint64_t hashOfPath(std::string_view path);

} // namespace kvr::netlistdb::analysis::probe
