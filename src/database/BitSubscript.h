#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace kvr::netlistdb {

/// A subscript of decimal digits in square brackets at the very end of a name.
struct BitSubscript {
    std::size_t baseLength; ///< length of the name without it; may be 0
    int index;
};

/// The bit subscript of @p name, if it ends in one: "data[07]" has the base "data" and the index 7.
/// @throws std::out_of_range "stoi" when the index exceeds 2,147,483,647.
std::optional<BitSubscript> bitSubscript(std::string_view name);

} // namespace kvr::netlistdb
