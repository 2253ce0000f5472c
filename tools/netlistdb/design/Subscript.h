#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kvr::netlistdb::tool {

/// Where the subscript at the end of @p name begins, `[5]` or `[7:0]`; npos when it ends in none.
std::size_t subscriptOf(std::string_view name);

/// Takes `vector[index]` apart. Returns false when @p name has no such end.
bool takeSubscript(std::string_view name, std::string_view &vector, int &index);

/// The same for `vector[from:to]`; a single index is a range of one.
bool takeRange(std::string_view name, std::string_view &vector, int &from, int &to);

/// `vector[3]`, `vector[7:0]`, `vector[7,4:2]`: the bits of one vector in short. @p bits is sorted in place.
std::string bitsText(const std::string &vector, std::vector<int> &bits);

} // namespace kvr::netlistdb::tool
