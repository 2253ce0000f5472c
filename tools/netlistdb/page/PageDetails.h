#pragma once

#include "output/Json.h"

#include <cstdint>

namespace kvr::netlistdb::tool {

class Interrupt;
class PageDesign;
class PagePart;

/// What cannot be folded by module, and so is written for some nets and buses only.
struct PageDetailsLimits {
    std::uint64_t signals = 20000;                     ///< nets and buses with their probe verdict
    std::uint64_t chainBytes = std::uint64_t(8) << 20; ///< text of the chains that prove their clocks
};

/// Writes for the nets and buses that a user declared, those nearest to the top first, whether they may be probed, what
/// they are in the other form when it is given, and for one bit of each the chains that prove its clocks. Returns how
/// many there are and how many have which of these. Takes time in proportion to the cones of logic of those.
/// @throws Interrupted
Json writeDetails(PageDesign &page, PagePart &part, const PageDetailsLimits &limits, const Interrupt &interrupt);

} // namespace kvr::netlistdb::tool
