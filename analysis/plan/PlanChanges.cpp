#include <netlistdb/analysis/ProbePlan.h>

#include "analysis/plan/PlanTexts.h"

#include <algorithm>
#include <array>
#include <set>

namespace kvr::netlistdb::analysis {

using namespace plan;

namespace {

/// Texts, each once, in the order in which they come.
class Names {
  public:
    void add(const std::string &name)
    {
        if (!name.empty() && m_known.insert(name).second) {
            m_names.push_back(name);
        }
    }
    std::size_t size() const { return m_names.size(); }
    std::string text() const
    {
        std::string all;
        for (const std::string &name : m_names) {
            all.append(all.empty() ? "" : ", ").append(name);
        }
        return all;
    }

  private:
    std::vector<std::string> m_names;
    std::set<std::string> m_known;
};

std::string clocksText(const std::vector<PlanClock> &clocks)
{
    Names names;
    for (const PlanClock &clock : clocks) {
        names.add(clock.name + (clock.edges != 0 ? std::string(" ") + edgesText(clock.edges) : std::string()));
    }
    return names.size() == 0 ? "none" : names.text();
}

bool isSameClock(const PlanClock &a, const PlanClock &b)
{
    return a.name == b.name && (a.edges == b.edges || a.edges == 0 || b.edges == 0);
}

bool areSameClocks(const std::vector<PlanClock> &before, const std::vector<PlanClock> &now)
{
    return before.size() == now.size() && std::all_of(before.begin(), before.end(), [&](const PlanClock &clock) {
               return std::any_of(now.begin(), now.end(),
                                  [&](const PlanClock &other) { return isSameClock(clock, other); });
           });
}

bool isLost(const PlanBit &before, const RebuiltBit &now)
{
    if (now.bit.name.empty()) {
        return true;
    }
    const bool wasGone = before.grade && before.device.empty();
    return !wasGone && now.bit.grade && now.bit.device.empty();
}

/// Why bits are lost: the reasons, each with the bits that it is for.
std::string lossText(const PlanProbe &before, const RebuiltProbe &now)
{
    std::vector<std::pair<std::string, Names>> reasons;
    for (std::size_t at = 0; at < before.bits.size(); ++at) {
        if (!isLost(before.bits[at], now.bits[at])) {
            continue;
        }
        const RebuiltBit &bit = now.bits[at];
        const std::string why =
            bit.bit.name.empty() ? bit.why : gradeText(bit.bit) + (bit.why.empty() ? "" : ": ") + bit.why;
        auto place = std::find_if(reasons.begin(), reasons.end(), [&](const auto &each) { return each.first == why; });
        if (place == reasons.end()) {
            place = reasons.insert(reasons.end(), {why, {}});
        }
        place->second.add(before.bits[at].name);
    }
    std::string text;
    for (const auto &[why, bits] : reasons) {
        text += text.empty() ? "" : "; ";
        text += bits.size() == before.bits.size() ? why : bits.text() + ": " + why;
    }
    return text;
}

} // namespace

const char *nameOf(PlanVerdict verdict)
{
    static constexpr std::array<const char *, 5> NAMES = {"kept", "renamed", "clock-changed", "split", "lost"};
    return NAMES.at(static_cast<std::size_t>(verdict));
}

std::vector<PlanFinding> findChanges(const PlanProbe &before, const RebuiltProbe &now)
{
    std::vector<PlanFinding> findings;
    if (std::string loss = lossText(before, now); !loss.empty()) {
        findings.push_back({PlanVerdict::Lost, std::move(loss)});
    }
    Names renamed;
    Names evidence;
    Names oldVectors;
    Names vectors;
    Names oldDeviceVectors;
    Names deviceVectors;
    for (std::size_t at = 0; at < before.bits.size(); ++at) {
        const PlanBit &old = before.bits[at];
        const RebuiltBit &bit = now.bits[at];
        if (!bit.bit.name.empty() && bit.bit.name != old.name) {
            renamed.add(before.bits.size() > 1 ? vectorOf(bit.bit.name) : bit.bit.name);
            evidence.add(bit.why);
        }
        oldVectors.add(vectorOf(old.name));
        vectors.add(vectorOf(bit.bit.name));
        // What only one of the builds shows in the device says nothing of vectors there.
        if (!old.device.empty() && !bit.bit.device.empty()) {
            oldDeviceVectors.add(vectorOf(old.device));
            deviceVectors.add(vectorOf(bit.bit.device));
        }
    }
    const std::string because = evidence.size() == 0 ? "" : " (" + evidence.text() + ")";
    const bool isSplit = vectors.size() > 1 && oldVectors.size() == 1;
    if (isSplit) {
        findings.push_back({PlanVerdict::Split, "in " + vectors.text() + because});
    } else if (deviceVectors.size() > 1 && oldDeviceVectors.size() == 1) {
        findings.push_back({PlanVerdict::Split, "in the device in " + deviceVectors.text()});
    }
    if (vectors.size() > 0 && !areSameClocks(before.clocks, now.clocks)) {
        findings.push_back(
            {PlanVerdict::ClockChanged, "from " + clocksText(before.clocks) + " to " + clocksText(now.clocks)});
    }
    if (renamed.size() > 0 && !isSplit) {
        findings.push_back({PlanVerdict::Renamed, "to " + renamed.text() + because});
    }
    if (findings.empty()) {
        findings.push_back({PlanVerdict::Kept, ""});
    }
    return findings;
}

} // namespace kvr::netlistdb::analysis
