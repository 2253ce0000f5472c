#pragma once

#include "output/Json.h"

#include <initializer_list>
#include <string>

namespace kvr::netlistdb::tool {

/// JSON schema of a row with the columns @p keys, which are those of the program's JSON results.
Json schemaOfRow(std::initializer_list<const char *> keys);

} // namespace kvr::netlistdb::tool
