#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kvr::netlistdb::tool {

/// Why yosys stopped.
struct YosysMessage {
    std::string place; ///< the file that is at fault, with the line as far as it is known; may be empty
    std::string text;
};

/// The fault in what yosys wrote to standard error while it read @p sources. Where yosys names a module alone, its
/// place is the source that declares it.
YosysMessage faultIn(std::string_view log, const std::vector<std::string> &sources);

} // namespace kvr::netlistdb::tool
