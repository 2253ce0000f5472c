#pragma once

#include <string>
#include <string_view>
#include <unordered_set>

/// Names for what the file leaves nameless.
namespace kvr::netlistdb::yosys {

constexpr std::string_view NAMELESS = "$bit$";
constexpr std::string_view CONSTANT = "$const$";

/// True for names of the file that could clash with generated ones.
inline bool looksMadeUp(std::string_view name)
{
    return name.substr(0, NAMELESS.size()) == NAMELESS || name.substr(0, CONSTANT.size()) == CONSTANT;
}

/// @p name, made longer until it is not in @p reserved.
inline std::string freeName(std::string name, const std::unordered_set<std::string> &reserved)
{
    while (reserved.count(name) != 0) {
        name += '_';
    }
    return name;
}

/// True for names that are hidden unless the file says otherwise.
inline bool looksGenerated(std::string_view name)
{
    return !name.empty() && name.front() == '$';
}

} // namespace kvr::netlistdb::yosys
