#pragma once

#include "output/Json.h"
#include "output/ResultWriter.h"

#include <string>
#include <string_view>
#include <vector>

namespace kvr::netlistdb::tool {

/// @p value as JSON; an absent value is null.
Json jsonOf(const Value &value);

/// Appends @p text as a JSON text to @p json.
void appendText(std::string &json, std::string_view text);

/// Appends @p row as a JSON object: the columns that have a key.
void appendObject(std::string &json, const std::vector<Column> &columns, const Row &row);

/// The value of the member "ending".
const char *nameOf(Ending ending);

} // namespace kvr::netlistdb::tool
