#pragma once

#include "commands/Session.h"

#include <netlistdb/analysis/ProbePlan.h>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// What a command line asks of a plan.
struct PlanRequest {
    std::string file;
    std::vector<std::string> designs; ///< the elaborated netlist, and the post-map netlist behind it
    std::vector<std::string> paths;   ///< of add
    std::vector<bool> accepted;       ///< by PlanVerdict, of check
    std::string form;                 ///< of export
};

/// A name of a probe with its width, for people.
std::string shownProbe(const analysis::PlanProbe &probe);

// Each runs one action and returns the exit code.
int addToPlan(const PlanRequest &request, Session &session);
int checkPlan(const PlanRequest &request, Session &session);
int updatePlan(const PlanRequest &request, Session &session);
int exportPlan(const PlanRequest &request, Session &session);

} // namespace kvr::netlistdb::tool
