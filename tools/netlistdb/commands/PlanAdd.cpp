#include "base/Failure.h"
#include "commands/PlanAction.h"
#include "design/ClockWords.h"
#include "design/InputFile.h"
#include "design/ProbePlanner.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

namespace kvr::netlistdb::tool {

analysis::ProbePlan readPlan(const std::string &file)
{
    try {
        return analysis::ProbePlan::parse(readText(file));
    } catch (const analysis::PlanError &fault) {
        throw refused(fmt::format("{}:{}", inputName(file), fault.line()), fault.what());
    }
}

std::string shownProbe(const analysis::PlanProbe &probe)
{
    return probe.bits.size() == 1 ? probe.name : fmt::format("{} ({} bits)", probe.name, probe.bits.size());
}

std::string shownClocks(const std::vector<analysis::PlanClock> &clocks)
{
    std::string text;
    for (const analysis::PlanClock &clock : clocks) {
        const char *const edges = edgesText(clock.edges);
        text += fmt::format("{}{}{}{}", text.empty() ? "" : ", ", clock.name, *edges != '\0' ? " " : "", edges);
    }
    return text;
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

/// Refuses a probe of which the device shows nothing.
void checkVisible(const analysis::PlanProbe &probe)
{
    const auto isHidden = [](const analysis::PlanBit &bit) { return bit.grade && bit.device.empty(); };
    if (std::all_of(probe.bits.begin(), probe.bits.end(), isHidden)) {
        const analysis::PlanBit &first = probe.bits.front();
        throw Failure(EXIT_NOTHING_FOUND,
                      fmt::format("'{}' cannot be probed: {}{}{} (netlistdb map ELABORATED POSTMAP '{}' tells more)",
                                  probe.name, analysis::nameOf(*first.grade),
                                  first.reason != analysis::GoneReason::None ? ", " : "",
                                  analysis::nameOf(first.reason), probe.name));
    }
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
    ProbePlanner planner(request.designs, session.reading());
    std::for_each(request.paths.begin(), request.paths.end(), [&](const std::string &path) { planner.check(path); });
    planner.match(session.reading());
    const std::size_t before = plan.probes.size();
    std::vector<std::string> known;
    for (const std::string &path : request.paths) {
        const auto isSame = [&](const analysis::PlanProbe &probe) { return probe.name == path; };
        if (std::any_of(plan.probes.begin(), plan.probes.end(), isSame)) {
            known.push_back(path);
            continue;
        }
        analysis::PlanProbe probe = planner.probeOf(path);
        checkVisible(probe);
        plan.probes.push_back(std::move(probe));
    }
    // Comments at the end of the file stay in front of what is added.
    if (plan.probes.size() > before) {
        std::swap(plan.probes[before].notes.above, plan.tail);
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
