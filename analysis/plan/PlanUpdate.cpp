#include <netlistdb/analysis/ProbePlan.h>

#include "analysis/plan/PlanTexts.h"

#include <algorithm>
#include <iterator>

namespace kvr::netlistdb::analysis {

using namespace plan;

namespace {

/// Bits of @p all side by side that are in one vector.
std::vector<std::vector<PlanBit>> partedByVector(const std::vector<PlanBit> &all)
{
    std::vector<std::vector<PlanBit>> parts;
    for (const PlanBit &bit : all) {
        const std::string vector = vectorOf(bit.name);
        auto part = std::find_if(parts.begin(), parts.end(),
                                 [&](const auto &bits) { return vectorOf(bits.front().name) == vector; });
        if (part == parts.end()) {
            part = parts.insert(parts.end(), std::vector<PlanBit>());
        }
        part->push_back(bit);
    }
    return parts;
}

/// The bits as they are, with the comments that they had.
std::vector<PlanBit> updatedBits(const PlanProbe &before, const RebuiltProbe &now)
{
    std::vector<PlanBit> bits;
    for (std::size_t at = 0; at < before.bits.size(); ++at) {
        bits.push_back(now.bits[at].bit.name.empty() ? before.bits[at] : now.bits[at].bit);
        PlanBit &bit = bits.back();
        bit.notes = before.bits[at].notes;
        // Without a post-map netlist, what is known of the device still is what it was.
        if (!now.bits[at].bit.grade) {
            bit.grade = before.bits[at].grade;
            bit.reason = before.bits[at].reason;
            bit.device = before.bits[at].device;
            bit.isInverted = before.bits[at].isInverted;
        }
    }
    return bits;
}

std::vector<PlanClock> updatedClocks(const PlanProbe &before, const RebuiltProbe &now)
{
    const bool isFound =
        std::any_of(now.bits.begin(), now.bits.end(), [](const RebuiltBit &bit) { return !bit.bit.name.empty(); });
    if (!isFound) {
        return before.clocks;
    }
    std::vector<PlanClock> clocks = now.clocks;
    for (std::size_t at = 0; at < std::min(clocks.size(), before.clocks.size()); ++at) {
        clocks[at].notes = before.clocks[at].notes;
    }
    return clocks;
}

/// What a probe of @p bits is called that was called @p before: the range that stood behind the vector stays.
std::string nameFor(const PlanProbe &before, const std::vector<PlanBit> &bits, bool isWhole)
{
    if (bits.size() == 1) {
        return bits.front().name;
    }
    const std::string vector = vectorOf(before.bits.front().name);
    const bool beginsWithVector = before.name.compare(0, vector.size(), vector) == 0;
    return vectorOf(bits.front().name) + (isWhole && beginsWithVector ? before.name.substr(vector.size()) : "");
}

bool hasProbe(const ProbePlan &plan, const std::string &name)
{
    return std::any_of(plan.probes.begin(), plan.probes.end(),
                       [&](const PlanProbe &probe) { return probe.name == name; });
}

} // namespace

std::size_t updateProbe(ProbePlan &plan, std::size_t at, const RebuiltProbe &now)
{
    const PlanProbe before = plan.probes[at];
    const std::vector<PlanBit> bits = updatedBits(before, now);
    const std::vector<PlanClock> clocks = updatedClocks(before, now);
    std::vector<std::vector<PlanBit>> parts = {bits};
    const bool wasVector = partedByVector(before.bits).size() == 1;
    const bool areAllFound =
        std::all_of(now.bits.begin(), now.bits.end(), [](const RebuiltBit &bit) { return !bit.bit.name.empty(); });
    if (wasVector && areAllFound) {
        parts = partedByVector(bits);
    }
    plan.probes.erase(plan.probes.begin() + static_cast<std::ptrdiff_t>(at));
    for (std::size_t part = 0; part < parts.size(); ++part) {
        const bool isSame = std::equal(parts[part].begin(), parts[part].end(), before.bits.begin(), before.bits.end(),
                                       [](const PlanBit &a, const PlanBit &b) { return a.name == b.name; });
        PlanProbe probe{before.name, clocks, parts[part], part == 0 ? before.notes : PlanNotes()};
        if (!isSame && areAllFound) {
            std::string name = nameFor(before, parts[part], parts.size() == 1);
            // Two nets of a plan may have become one: the older name then says which probe this is.
            for (; hasProbe(plan, name); name += '\'') {
            }
            probe.name = std::move(name);
        }
        plan.probes.insert(plan.probes.begin() + static_cast<std::ptrdiff_t>(at + part), std::move(probe));
    }
    return parts.size();
}

} // namespace kvr::netlistdb::analysis
