#pragma once

#include "analysis/probe/BitGraph.h"
#include "analysis/probe/Hash.h"

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace kvr::netlistdb::analysis::probe {

/// Calls @p visit with each declared name of each net of the unfolded design: the names of its instances and its own,
/// from the top down, as a hash. Levels may be separated by "/", "." or blanks, and a backslash in front of a name does
/// not count, so that a net that was flattened has the name that it had before.
void forEachName(const BitGraph &graph,
                 const std::function<void(std::uint32_t occurrence, std::uint32_t net, std::uint64_t name)> &visit);

/// By occurrence: the hash of what stands in front of the names of its nets.
std::vector<std::uint64_t> prefixesOf(const BitGraph &graph);

/// The hash of one such name, behind a prefix where it has one.
std::uint64_t hashOfPath(std::string_view path, std::uint64_t prefix = EMPTY_TEXT);

} // namespace kvr::netlistdb::analysis::probe
