#pragma once

#include <string_view>

namespace kvr::netlistdb::tool {

/// The page without data, as web/ makes it: HTML, style and program in one. A text for ever.
std::string_view pageBundle();

} // namespace kvr::netlistdb::tool
