#include "base/UntilExit.h"
#include "commands/PlanAction.h"
#include "design/PlanFile.h"
#include "design/PlanSteps.h"
#include "design/ProbePlanner.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

namespace kvr::netlistdb::tool {

std::string shownProbe(const analysis::PlanProbe &probe)
{
    return probe.bits.size() == 1 ? probe.name : fmt::format("{} ({} bits)", probe.name, probe.bits.size());
}

namespace {

/// `3 exact, 1 gone`; empty without a post-map netlist.
std::string gradesOf(const analysis::PlanProbe &probe)
{
    std::map<analysis::ProbeGrade, std::size_t> counts;
    for (const analysis::PlanBit &bit : probe.bits) {
        if (bit.grade) {
            ++counts[*bit.grade];
        }
    }
    std::string text;
    for (const auto &[grade, count] : counts) {
        text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, analysis::nameOf(grade));
    }
    return text;
}

} // namespace

int addToPlan(const PlanRequest &request, Session &session)
{
    OutputStream output(request.file, request.designs, session.interrupt.temporaries());
    analysis::ProbePlan plan;
    // What is no regular file, such as /dev/stdout, holds no plan.
    if (output.target().exists && output.target().status.st_size > 0) {
        plan = readPlan(request.file);
    }
    const UntilExit held(std::make_unique<ProbePlanner>(request.designs, session.reading()));
    ProbePlanner &planner = *held;
    std::for_each(request.paths.begin(), request.paths.end(), [&](const std::string &path) { planner.check(path); });
    planner.match(session.reading());
    const std::size_t before = plan.probes.size();
    const std::vector<std::string> known = addProbes(plan, planner, request.paths);
    if (plan.probes.size() > before) {
        output.write(plan.text());
        output.close();
    }
    const auto writer = session.makeWriter();
    ResultHead head;
    head.command = "plan-add";
    head.facts = {{"plan", std::string_view(request.file)}};
    head.columns = {{"probe", nullptr},
                    {nullptr, "PROBE"},
                    {"bits", nullptr},
                    {"clocks", "CLOCK", Look::Name},
                    {"grades", "GRADES"}};
    writer->begin(head);
    for (std::size_t at = before; at < plan.probes.size(); ++at) {
        const analysis::PlanProbe &probe = plan.probes[at];
        const std::string shown = shownProbe(probe);
        const std::string clocks = shownClocks(probe.clocks);
        const std::string grades = gradesOf(probe);
        writer->row({std::string_view(probe.name), std::string_view(shown), std::uint64_t{probe.bits.size()},
                     std::string_view(clocks), std::string_view(grades)});
    }
    const int exitCode = session.finish(*writer, true, Ending::Complete);
    for (const std::string &path : known) {
        session.note(fmt::format("{}: '{}' is there already; plan update brings it up to date", request.file, path));
    }
    return exitCode;
}

} // namespace kvr::netlistdb::tool
