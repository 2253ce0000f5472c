#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kvr::netlistdb::tool {

/// The full name of what is called @p name in the instance at @p path, which is empty for the root.
inline std::string joined(const std::string &path, std::string_view name)
{
    return path.empty() ? std::string(name) : path + '/' + std::string(name);
}

/// Makes full names of @p names in the instance at @p path.
inline void joinAll(const std::string &path, std::vector<std::string> &names)
{
    for (std::string &name : names) {
        name = joined(path, name);
    }
}

} // namespace kvr::netlistdb::tool
