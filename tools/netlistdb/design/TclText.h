#pragma once

#include <string>
#include <string_view>

namespace kvr::netlistdb::tool {

/// @p text as one word of a Tcl script, in which nothing is substituted. Pure ASCII: the encoding of the script makes
/// no difference. Bytes that are no UTF-8 become the characters of their numbers.
std::string tclWord(std::string_view text);

} // namespace kvr::netlistdb::tool
