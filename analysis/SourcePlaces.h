#pragma once

#include <netlistdb/analysis/Clocks.h>

#include <string>

namespace Verific {
class DesignObj;
}

namespace kvr::netlistdb::analysis {

/// Where @p object stands in the source text.
SourcePlace placeOf(const Verific::DesignObj &object);

/// @p text, empty for null.
std::string textOf(const char *text);

} // namespace kvr::netlistdb::analysis
