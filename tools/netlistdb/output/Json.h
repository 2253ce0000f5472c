#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace kvr::netlistdb::tool {

/// Objects whose members stay in the order in which they were added.
using Json = nlohmann::ordered_json;

/// The version of every JSON format that the program writes.
constexpr int JSON_VERSION = 1;

/// The two members that begin every JSON result of @p command.
inline Json jsonHead(const char *command)
{
    return {{"format", std::string("netlistdb-") + command}, {"version", JSON_VERSION}};
}

/// @p text, or null when it is empty.
inline Json jsonOrNull(const std::string &text)
{
    return text.empty() ? Json() : Json(text);
}

/// @p json as text; @p indent -1 keeps it on one line. Names are bytes: those that are no UTF-8 become U+FFFD.
inline std::string jsonText(const Json &json, int indent = -1)
{
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

} // namespace kvr::netlistdb::tool
