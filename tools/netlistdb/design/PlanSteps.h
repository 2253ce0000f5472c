#pragma once

#include <cstddef>
#include <netlistdb/analysis/ProbePlan.h>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

class ProbePlanner;

/// Adds the nets and buses that @p paths name to @p plan, behind those that are there. Returns the paths that are there
/// already. The planner has matched.
/// @throws Failure for a path that names none, and for one of which the device shows nothing.
std::vector<std::string> addProbes(analysis::ProbePlan &plan, ProbePlanner &planner,
                                   const std::vector<std::string> &paths);

/// Puts what became of the probe at place @p at of @p plan in its place, with the bits that its name stands for where
/// these have become more. Returns the number of probes that stand there.
std::size_t bringUpToDate(analysis::ProbePlan &plan, std::size_t at, const analysis::RebuiltProbe &now,
                          ProbePlanner &planner);

} // namespace kvr::netlistdb::tool
