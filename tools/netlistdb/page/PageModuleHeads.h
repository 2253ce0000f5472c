#pragma once

#include "output/Json.h"

#include <cstdint>
#include <string>

namespace Verific {
class DesignObj;
}

namespace kvr::netlistdb::tool {

class PageDesign;

/// What a page needs of module @p number before it looks into it: names, source, counts, instances, and its registers
/// by clock in the terms of the module.
Json moduleHeadOf(PageDesign &page, std::uint32_t number);

/// The kinds of leaf cells: by place in the models of the analysis, with pins and roles.
Json cellKindsOf(PageDesign &page);

/// The name of @p object in the netlist database; empty when it is null or has none.
std::string netlistNameOf(const Verific::DesignObj *object);

} // namespace kvr::netlistdb::tool
