#pragma once

#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// Other ways to write @p path as this program takes it, the likeliest first: without the backslash and blank of
/// Verilog's escaped names, with slashes for the dots between levels, without @p top in front. Names may hold dots of
/// their own, so that each choice of dots is one way, as long as they are few.
std::vector<std::string> otherSpellings(const std::string &path, const std::string &top);

/// True when @p path has what --glob would take for a wildcard.
bool hasWildcard(const std::string &path);

} // namespace kvr::netlistdb::tool
