#include <netlistdb/analysis/ProbeReport.h>

#include "analysis/report/FindingCollector.h"
#include "analysis/report/NearestRegisters.h"
#include "analysis/report/NetReasons.h"

#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/IVDBNetBus.h>
#include <netlistdb/VDBHelper.h>

#include <algorithm>
#include <map>
#include <stdexcept>
#include <utility>

namespace kvr::netlistdb::analysis {

namespace {

/// Registers that are looked at for one that a net of the device carries.
constexpr std::size_t MOST_REGISTERS = 8;

const ClockMap &requireForm(const ClockMap &map, IDesignDatabase::SOURCE_TYPE source)
{
    if (map.state().design.source != source) {
        throw std::invalid_argument("ProbeReport: the maps are not of the elaborated and the post-map form");
    }
    return map;
}

} // namespace

struct ProbeReport::State {
    explicit State(const ClockMap &clocks) : reasons(clocks) {}
    State(const ClockMap &clocks, const ClockMap &postMapClocks, const CrossProbe &crossProbe)
        : reasons(requireForm(clocks, IDesignDatabase::SOURCE_ELABORATED)), probe(&crossProbe)
    {
        device.emplace(requireForm(postMapClocks, IDesignDatabase::SOURCE_POST_MAP));
    }

    NetReasons reasons;
    const CrossProbe *probe = nullptr;
    std::optional<NetReasons> device;

    void check() const
    {
        requireCurrent(reasons.clocks().state());
        if (device) {
            requireCurrent(device->clocks().state());
        }
    }

    /// The nearest register in the fan-in that a net of the device carries.
    std::string registerBefore(const IVDBInstance *inst, const IVDBNet *net) const
    {
        const ClockMap::State &map = reasons.clocks().state();
        Place place{{}, NONE};
        if (!findPlace(map, inst, net, place)) {
            return {};
        }
        for (const Place &each : nearestRegisters(map.design, place, MOST_REGISTERS)) {
            const IVDBInstance *const instance = map.design.itemOf(each.context);
            const IVDBNet *const item = map.design.itemOf(each);
            if (instance != nullptr && item != nullptr && !probe->find(instance, item).targets.empty()) {
                return map.design.nameOf(each);
            }
        }
        return {};
    }

    void findGone(const IVDBInstance *inst, const IVDBNet *net, const ProbeMatch &match,
                  std::vector<NetReason> &found) const
    {
        const auto has = [&](ProbeReason reason) {
            return std::any_of(found.begin(), found.end(),
                               [&](const NetReason &each) { return each.reason == reason; });
        };
        const std::string evidence = match.evidence + (match.cell.empty() ? "" : " (" + match.cell + ")");
        if (match.reason == GoneReason::Constant) {
            if (!has(ProbeReason::Constant)) {
                found.push_back({ProbeReason::Constant, true, evidence, {}});
            }
        } else if (match.reason == GoneReason::Unused) {
            found.erase(std::remove_if(found.begin(), found.end(),
                                       [](const NetReason &each) { return each.reason == ProbeReason::Unused; }),
                        found.end());
            found.push_back({ProbeReason::Unused, true, evidence + ": synthesis removed it", {}});
        } else {
            found.push_back({ProbeReason::Absorbed, true, evidence, registerBefore(inst, net)});
        }
    }

    /// What becomes of the net in the device.
    void findMatch(const IVDBInstance *inst, const IVDBNet *net, std::vector<NetReason> &found, ProbeBit &bit) const
    {
        bit.match = probe->find(inst, net);
        if (bit.match->grade == ProbeGrade::Gone) {
            findGone(inst, net, *bit.match, found);
            return;
        }
        if (bit.match->targets.empty()) {
            found.push_back({ProbeReason::Unmatched, true, bit.match->evidence, registerBefore(inst, net)});
            return;
        }
        std::vector<NetReason> first;
        for (const ProbeTarget &target : bit.match->targets) {
            std::vector<NetReason> own;
            device->findInDevice(target.instance, target.net, own);
            if (std::none_of(own.begin(), own.end(), [](const NetReason &each) { return each.bars; })) {
                const ElectricalNet electrical = device->clocks().electrical(target.instance, target.net);
                bit.target = target;
                bit.wire = {electrical.instance, electrical.net};
                return;
            }
            if (first.empty()) {
                first = std::move(own);
            }
        }
        bit.target = bit.match->targets.front();
        for (NetReason &reason : first) {
            reason.evidence += (reason.evidence.empty() ? "" : ", ") + std::string("in the device: ") +
                               VDBHelper::getNetFullName(bit.target->net, bit.target->instance);
            found.push_back(std::move(reason));
        }
    }

    /// Adds what only shows when all bits are seen together.
    void findUnrelated(const SignalReport &report, FindingCollector &findings) const
    {
        std::map<ClockId, std::vector<std::uint32_t>> bits;
        for (std::uint32_t bit = 0; bit < report.bits.size(); ++bit) {
            if (report.bits[bit].mayBeProbed && report.bits[bit].clock) {
                bits[*report.bits[bit].clock].push_back(bit);
            }
        }
        if (bits.size() < 2) {
            return;
        }
        const ClockId most = std::max_element(bits.begin(), bits.end(), [](const auto &a, const auto &b) {
                                 return a.second.size() < b.second.size();
                             })->first;
        const ClockMap &clocks = reasons.clocks();
        for (const auto &[clock, places] : bits) {
            for (const std::uint32_t bit : places) {
                if (clock != most && !clocks.related(clock, most)) {
                    findings.add(
                        bit, {{ProbeReason::UnrelatedClocks,
                               false,
                               clocks.clocks()[clock].name + " here, " + clocks.clocks()[most].name + " for most bits",
                               {}}});
                }
            }
        }
    }
};

ProbeReport::ProbeReport(const ClockMap &clocks)
{
    requireCurrent(clocks.state());
    m_state = std::make_unique<const State>(clocks);
}

ProbeReport::ProbeReport(const ClockMap &clocks, const ClockMap &postMapClocks, const CrossProbe &probe)
{
    requireCurrent(clocks.state());
    requireCurrent(postMapClocks.state());
    m_state = std::make_unique<const State>(clocks, postMapClocks, probe);
}

ProbeReport::~ProbeReport() = default;
ProbeReport::ProbeReport(ProbeReport &&) noexcept = default;
ProbeReport &ProbeReport::operator=(ProbeReport &&) noexcept = default;

SignalReport ProbeReport::of(const IVDBInstance *inst, IVDBNet *net) const
{
    return of(inst, {net}, nullptr);
}

SignalReport ProbeReport::of(const IVDBInstance *inst, const IVDBNetBus *bus) const
{
    m_state->check();
    return of(inst, bus->getNets(), bus);
}

SignalReport ProbeReport::of(const IVDBInstance *inst, const std::vector<IVDBNet *> &bits,
                             const IVDBNetBase *whole) const
{
    // What belonged to a source that is gone is not to be touched.
    m_state->check();
    SignalReport report;
    FindingCollector findings;
    std::size_t barred = 0;
    for (std::uint32_t at = 0; at < bits.size(); ++at) {
        ProbeBit bit;
        std::vector<NetReason> reasons;
        if (whole != nullptr) {
            addRefusal(*whole, reasons);
        }
        if (bits[at] == nullptr) {
            reasons.push_back({ProbeReason::Constant, true, "tied to a constant", {}});
        } else {
            if (m_state->reasons.find(inst, bits[at], reasons, bit) && m_state->probe != nullptr) {
                m_state->findMatch(inst, bits[at], reasons, bit);
            }
        }
        bit.mayBeProbed = std::none_of(reasons.begin(), reasons.end(), [](const NetReason &each) { return each.bars; });
        if (!bit.mayBeProbed) {
            bit.wire = {};
            ++barred;
        }
        findings.add(at, std::move(reasons));
        report.bits.push_back(std::move(bit));
    }
    m_state->findUnrelated(report, findings);
    report.findings = findings.take();
    report.verdict = barred == bits.size()     ? ProbeVerdict::No
                     : barred > 0              ? ProbeVerdict::Partly
                     : report.findings.empty() ? ProbeVerdict::Ok
                                               : ProbeVerdict::Warning;
    return report;
}

std::size_t SignalReport::probeable() const
{
    return static_cast<std::size_t>(
        std::count_if(bits.begin(), bits.end(), [](const ProbeBit &bit) { return bit.mayBeProbed; }));
}

} // namespace kvr::netlistdb::analysis
