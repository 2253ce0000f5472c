#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace kvr::netlistdb::tool {

/// One field of a result. Texts, lists and JSON values are not owned: they must live until the row has been written.
using Value = std::variant<std::monostate, bool, std::uint64_t, std::string_view, const std::vector<std::string> *,
                           const std::vector<std::pair<std::string, std::string>> *, const nlohmann::ordered_json *>;

/// @p text, or null when it is empty.
inline Value textOrNull(std::string_view text)
{
    return text.empty() ? Value() : Value(text);
}

/// One result: a value for each column.
using Row = std::vector<Value>;

/// A named value about a result as a whole.
struct Fact {
    const char *key;
    Value value;
};

} // namespace kvr::netlistdb::tool
