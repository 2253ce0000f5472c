#pragma once

#include <netlistdb/analysis/Clocks.h>

namespace Verific {
class DesignObj;
}

namespace kvr::netlistdb::analysis {

/// Where @p object stands in the source text.
SourcePlace placeOf(const Verific::DesignObj &object);

} // namespace kvr::netlistdb::analysis
