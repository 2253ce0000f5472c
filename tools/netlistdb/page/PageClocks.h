#pragma once

#include "output/Json.h"

namespace kvr::netlistdb::tool {

class PageDesign;

/// The clocks of the design in the order of the clock map, with the counts of registers and nets.
Json pageClocksOf(PageDesign &page);

/// The crossings of the design: those of one vector that are alike as one row, and how many there are of each severity.
Json pageCrossingsOf(PageDesign &page);

} // namespace kvr::netlistdb::tool
