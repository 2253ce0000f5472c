#pragma once

#include <sstream>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// The parts of @p text between commas; one empty part when @p text is empty.
inline std::vector<std::string> splitAtCommas(const std::string &text)
{
    std::vector<std::string> parts;
    std::istringstream stream(text + ",");
    for (std::string part; std::getline(stream, part, ',');) {
        parts.push_back(part);
    }
    return parts;
}

} // namespace kvr::netlistdb::tool
