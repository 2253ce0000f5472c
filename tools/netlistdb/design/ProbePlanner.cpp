#include "design/ProbePlanner.h"

#include "base/Progress.h"
#include "base/Stats.h"
#include "design/BestName.h"

#include <algorithm>
#include <fmt/format.h>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

using analysis::NetFingerprints;
using analysis::PlanBit;
using analysis::PlanClock;
using analysis::PlanProbe;
using analysis::RebuiltBit;
using analysis::RebuiltProbe;

namespace {

DesignPair load(const std::vector<std::string> &designs, const Reading &reading)
{
    if (designs.size() > 1) {
        return loadDesignPair({designs[0]}, designs[1], reading);
    }
    Reading own = reading;
    own.form = Form::Elaborated;
    DesignPair pair;
    pair.elaborated = loadDesign(designs, Clocks::Yes, own);
    return pair;
}

} // namespace

ProbePlanner::ProbePlanner(const std::vector<std::string> &designs, const Reading &reading)
    : m_designs(load(designs, reading)), m_elaborated(*m_designs.elaborated), m_resolver(m_elaborated)
{
}

ProbePlanner::ProbePlanner(Design &elaborated, const analysis::CrossProbe *probe)
    : m_elaborated(elaborated), m_resolver(m_elaborated), m_probe(probe)
{
}

void ProbePlanner::match()
{
    m_fingerprints =
        std::make_unique<const NetFingerprints>(m_elaborated.database(), IDesignDatabase::SOURCE_ELABORATED);
    if (m_designs.postMap != nullptr) {
        m_ownProbe = std::make_unique<const analysis::CrossProbe>(m_elaborated.database());
        m_probe = m_ownProbe.get();
    }
}

void ProbePlanner::match(const Reading &reading)
{
    reading.progress.begin("matching");
    reading.stats.begin("match");
    match();
    reading.progress.clear();
    reading.stats.end();
}

ProbePlanner::~ProbePlanner() = default;

/// What the device has of @p net, and how it is made. Of several nets that carry its value, the one that the plan has
/// stays the one.
void ProbePlanner::fill(PlanBit &bit, IVDBInstance *instance, IVDBNet *net, const std::string &wantedDevice) const
{
    if (net == nullptr) {
        if (m_probe != nullptr) {
            bit.grade = analysis::ProbeGrade::Gone;
            bit.reason = analysis::GoneReason::Constant;
        }
        return;
    }
    bit.fingerprint = m_fingerprints->of(instance, net);
    if (m_probe == nullptr) {
        return;
    }
    const analysis::ProbeMatch match = m_probe->find(instance, net);
    bit.grade = match.grade;
    bit.reason = match.reason;
    for (const analysis::ProbeTarget &target : match.targets) {
        std::string name = VDBHelper::getNetFullName(target.net, target.instance);
        if (bit.device.empty() || name == wantedDevice) {
            bit.device = std::move(name);
            bit.isInverted = target.inverted;
        }
    }
    const bool isNone = match.grade == analysis::ProbeGrade::Gone || match.grade == analysis::ProbeGrade::Unknown;
    if (bit.device.empty() && !isNone) {
        bit.grade = analysis::ProbeGrade::Unknown;
    }
}

void ProbePlanner::addClocks(const IVDBInstance *instance, const IVDBNet *net, std::vector<PlanClock> &clocks)
{
    const analysis::ClockMap &map = m_elaborated.clocks();
    const std::uint8_t launching = m_fingerprints->edgesOf(instance, net);
    for (const analysis::ReachingClock &reaching : map.launch(instance, net).clocks) {
        const analysis::Clock &clock = map.clocks()[reaching.clock];
        auto known =
            std::find_if(clocks.begin(), clocks.end(), [&](const PlanClock &each) { return each.name == clock.name; });
        if (known == clocks.end()) {
            known = clocks.insert(clocks.end(), {clock.name, 0, {}});
        }
        const std::uint8_t own = launching & clock.edges;
        known->edges |= own != 0 ? own : clock.edges;
    }
}

PlanProbe ProbePlanner::probeOf(const std::string &path)
{
    PlanProbe probe;
    probe.name = path;
    for (const PathResolver::Bit &found : m_resolver.nets(path)) {
        PlanBit bit;
        bit.name = found.name;
        fill(bit, found.instance, found.net, {});
        if (found.net != nullptr) {
            addClocks(found.instance, found.net, probe.clocks);
        }
        probe.bits.push_back(std::move(bit));
    }
    return probe;
}

RebuiltProbe ProbePlanner::rebuilt(const PlanProbe &before)
{
    RebuiltProbe now;
    for (const PlanBit &each : before.bits) {
        RebuiltBit bit;
        const std::vector<PathResolver::Bit> named = m_resolver.find(each.name);
        PathResolver::Bit found{nullptr, nullptr, {}};
        if (named.size() == 1) {
            found = named.front();
            bit.bit.name = each.name;
        } else if (named.size() > 1) {
            bit.why = fmt::format("is a vector of {} bits", named.size());
        } else {
            found = search(each, bit.why);
            bit.bit.name = found.name;
        }
        if (!bit.bit.name.empty()) {
            fill(bit.bit, found.instance, found.net, each.device);
            if (bit.why.empty() && m_probe != nullptr && bit.bit.device.empty() && found.net != nullptr) {
                bit.why = m_probe->find(found.instance, found.net).evidence;
            }
        }
        if (found.net != nullptr) {
            addClocks(found.instance, found.net, now.clocks);
        }
        now.bits.push_back(std::move(bit));
    }
    // A clock that goes by several names keeps the one that the plan has.
    const analysis::ClockMap &map = m_elaborated.clocks();
    for (const PlanClock &clock : before.clocks) {
        const auto id = map.find(clock.name);
        for (PlanClock &each : now.clocks) {
            if (id && map.clocks()[*id].name == each.name) {
                each.name = clock.name;
            }
        }
    }
    return now;
}

bool ProbePlanner::isOnDevice(const NetFingerprints::Wire &wire, const std::string &device) const
{
    if (m_probe == nullptr || device.empty()) {
        return false;
    }
    const std::vector<analysis::ProbeTarget> targets = m_probe->find(wire.front().instance, wire.front().net).targets;
    return std::any_of(targets.begin(), targets.end(), [&](const analysis::ProbeTarget &target) {
        return VDBHelper::getNetFullName(target.net, target.instance) == device;
    });
}

/// Finds a bit whose name is gone by the way it is made: the only one, or the only one of several that is the same net
/// of the device. Says in @p why what speaks for it, or why there is none.
PathResolver::Bit ProbePlanner::search(const PlanBit &before, std::string &why)
{
    const auto take = [&](const NetFingerprints::Wire &wire, const char *reason) {
        BestName best = bestNameOf(m_elaborated, wire, before.name);
        why = reason;
        return PathResolver::Bit{best.seen.instance, best.seen.net, std::move(best.name)};
    };
    std::size_t alike = 0;
    for (const bool isNear : {true, false}) {
        Wires wires =
            isNear ? m_fingerprints->findNear(before.fingerprint) : m_fingerprints->findDeep(before.fingerprint);
        if (wires.size() == 1 && (isNear || before.fingerprint.isOnly)) {
            return take(wires.front(), isNear ? "computes the same from the same signals"
                                              : "the only net with the same cells behind it");
        }
        alike = std::max(alike, wires.size());
        wires.erase(std::remove_if(wires.begin(), wires.end(),
                                   [&](const auto &wire) { return !isOnDevice(wire, before.device); }),
                    wires.end());
        if (wires.size() == 1) {
            return take(wires.front(), "made alike, and the same net of the device");
        }
    }
    why = alike == 0 ? "no net of this name, and none that is made alike"
                     : fmt::format("no net of this name; not decided which of {} nets made alike it is", alike);
    return {nullptr, nullptr, {}};
}

} // namespace kvr::netlistdb::tool
