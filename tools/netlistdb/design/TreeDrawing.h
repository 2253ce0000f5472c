#pragma once

#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// What a tree draws in front of a name. @p isLast says for each level below the root, down to that of the name,
/// whether no sibling follows; empty for the root.
inline std::string treeDrawing(const std::vector<bool> &isLast)
{
    std::string text;
    for (std::size_t level = 0; level + 1 < isLast.size(); ++level) {
        text += isLast[level] ? "   " : "│  ";
    }
    if (!isLast.empty()) {
        text += isLast.back() ? "└─ " : "├─ ";
    }
    return text;
}

} // namespace kvr::netlistdb::tool
