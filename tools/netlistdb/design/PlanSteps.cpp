#include "design/PlanSteps.h"

#include "base/Failure.h"
#include "design/ProbePlanner.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace kvr::netlistdb::tool {

using analysis::PlanBit;
using analysis::PlanProbe;

namespace {

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

/// Takes over the bits that the name of a probe stands for where these have become more, with the comments of those
/// that were there before.
void widen(PlanProbe &probe, ProbePlanner &planner)
{
    if (planner.widthOf(probe.name) <= probe.bits.size()) {
        return;
    }
    PlanProbe wide = planner.probeOf(probe.name);
    for (PlanBit &bit : wide.bits) {
        for (PlanBit &before : probe.bits) {
            if (bit.name == before.name) {
                bit.notes = std::move(before.notes);
            }
        }
    }
    probe.bits = std::move(wide.bits);
}

} // namespace

std::vector<std::string> addProbes(analysis::ProbePlan &plan, ProbePlanner &planner,
                                   const std::vector<std::string> &paths)
{
    const std::size_t before = plan.probes.size();
    std::vector<std::string> known;
    for (const std::string &path : paths) {
        const auto isSame = [&](const PlanProbe &probe) { return probe.name == path; };
        if (std::any_of(plan.probes.begin(), plan.probes.end(), isSame)) {
            known.push_back(path);
            continue;
        }
        PlanProbe probe = planner.probeOf(path);
        checkVisible(probe);
        plan.probes.push_back(std::move(probe));
    }
    // Comments at the end of the file stay in front of what is added.
    if (plan.probes.size() > before) {
        std::swap(plan.probes[before].notes.above, plan.tail);
    }
    return known;
}

std::size_t bringUpToDate(analysis::ProbePlan &plan, std::size_t at, const analysis::RebuiltProbe &now,
                          ProbePlanner &planner)
{
    const std::size_t count = updateProbe(plan, at, now);
    if (count == 1) {
        widen(plan.probes[at], planner);
    }
    return count;
}

} // namespace kvr::netlistdb::tool
