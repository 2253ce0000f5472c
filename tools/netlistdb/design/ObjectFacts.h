#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Verific {
class DesignObj;
}

namespace kvr::netlistdb::tool {

/// The ranges of an attribute `src`.
std::vector<std::string> rangesOf(std::string_view src);

/// Where @p object comes from: every range, as the netlist has it; where it has but a position, `file:line`.
std::vector<std::string> sourcesOf(const Verific::DesignObj &object);

/// The attributes of @p object except those that say where it comes from.
std::vector<std::pair<std::string, std::string>> attributesOf(const Verific::DesignObj &object);

} // namespace kvr::netlistdb::tool
