#pragma once

#include <netlistdb/analysis/ProbePlan.h>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

class OutputStream;

/// Reads the plan in @p file.
/// @throws Failure that names file and line.
analysis::ProbePlan readPlan(const std::string &file);

/// `clk_a rise, clk_b fall`; empty without clocks.
std::string shownClocks(const std::vector<analysis::PlanClock> &clocks);

/// What other tools read of a plan.
enum class PlanForm { Csv, JsonDocument, Tcl };

/// Writes @p plan for other tools.
void writePlan(const analysis::ProbePlan &plan, PlanForm form, OutputStream &output);

} // namespace kvr::netlistdb::tool
