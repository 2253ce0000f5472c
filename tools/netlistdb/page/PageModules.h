#pragma once

#include "output/Json.h"

namespace kvr::netlistdb::tool {

class PageDesign;
class PagePart;

/// Writes the contents of every module to @p part, one JSON object behind the other: its nets with the clocks that
/// reach them in the terms of the module, what users know as nets and buses, its cells with their pins. Returns what a
/// page needs of all modules before it looks into one: names, instances, registers, and where its contents stand in the
/// part. Time and memory in proportion to the folded design.
Json writeModules(PageDesign &page, PagePart &part);

} // namespace kvr::netlistdb::tool
