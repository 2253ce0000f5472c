#pragma once

#include "output/Json.h"

namespace kvr::netlistdb::tool {

class PageDesign;
class PagePart;

/// The clocks of the design in the order of the clock map, with the counts of registers and nets.
Json pageClocksOf(PageDesign &page);

/// Writes the crossings of the design to @p part, those of one vector that are alike as one row. Returns how many rows
/// there are, how many of them the page has, and for each pair of clocks how many bits of each severity.
Json writeCrossings(PageDesign &page, PagePart &part);

} // namespace kvr::netlistdb::tool
