#pragma once

#include "analysis/DesignModel.h"

#include <netlistdb/analysis/Clocks.h>

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis {

/// The clocks that the clock with number @p clock, which begins at a @p root, is made from, in ascending order: of a
/// register its clock; of logic the clocks that go into it or, when nothing but registers does, the clocks of these; of
/// a clock generator those on its clock inputs. @p ids: by number among all clocks of the design.
std::vector<ClockId> clockInputs(const DesignModel &design, const std::vector<ClockId> &ids, ClockRoot root,
                                 std::uint32_t clock);

} // namespace kvr::netlistdb::analysis
