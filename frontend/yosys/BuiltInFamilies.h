#pragma once

#include <array>
#include <string_view>
#include <utility>

namespace kvr::netlistdb::yosys {

/// Number of files in `families/`.
constexpr std::size_t BUILT_IN_FAMILIES = 11;

/// Name and text of each file in `families/`. The build makes the source of this.
const std::array<std::pair<std::string_view, std::string_view>, BUILT_IN_FAMILIES> &builtInFamilies();

} // namespace kvr::netlistdb::yosys
