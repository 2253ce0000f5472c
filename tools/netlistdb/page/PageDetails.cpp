#include "page/PageDetails.h"

#include "base/Interrupt.h"
#include "design/ClockChains.h"
#include "design/ClockWords.h"
#include "design/ProbeRows.h"
#include "page/PageDesign.h"
#include "page/PagePart.h"

#include <deque>
#include <netlistdb/netlistdb.h>
#include <optional>

namespace kvr::netlistdb::tool {

namespace {

class DetailsWriter {
  public:
    DetailsWriter(PageDesign &page, PagePart &part, const PageDetailsLimits &limits)
        : m_page(page), m_part(part), m_limits(limits)
    {
    }

    void write(const Interrupt &interrupt)
    {
        struct Place {
            IVDBInstance *instance;
            std::uint32_t module;
        };
        m_part.write("{");
        std::deque<Place> waiting = {{&m_page.design().root(), m_page.model().hierarchy.top()}};
        for (; !waiting.empty(); waiting.pop_front()) {
            interrupt.check();
            const Place place = waiting.front();
            writeInstance(*place.instance, place.module);
            const auto &subs = m_page.modules()[place.module].subs;
            for (std::uint32_t sub = 0; sub < subs.size(); ++sub) {
                if (IVDBInstance *const below = m_page.below(*place.instance, place.module, sub)) {
                    waiting.push_back({below, subs[sub].module});
                }
            }
        }
        m_part.write("}");
    }

    Json counts() const { return {{"signals", m_signals}, {"verdicts", m_verdicts}, {"chains", m_chains}}; }

  private:
    void writeInstance(IVDBInstance &instance, std::uint32_t module)
    {
        Json list = Json::array();
        const std::vector<Probe> &probes = m_page.probesOf(module);
        for (std::size_t signal = 0; signal < probes.size(); ++signal) {
            if (!probes[signal].declared) {
                continue;
            }
            if (m_signals++ < m_limits.signals) {
                list.push_back(detailsOf(instance, probes[signal], signal));
            }
        }
        if (!list.empty()) {
            const std::string path = jsonText(Json(instance.getPath()));
            m_part.write((m_verdicts == list.size() ? "" : ",") + path + ":" + jsonText(list));
        }
    }

    Json detailsOf(IVDBInstance &instance, const Probe &probe, std::size_t signal)
    {
        ++m_verdicts;
        const analysis::SignalReport report = m_page.probed().report().of(&instance, probe.bits, probe.item);
        const std::optional<analysis::ClockId> clock = samplingClockOf(report);
        Json details = {{"signal", signal}, {"verdict", nameOf(report.verdict)}, {"probeable", report.probeable()}};
        if (clock) {
            details["clock"] = *clock;
        }
        Json reasons = Json::array();
        for (const analysis::ProbeFinding &finding : report.findings) {
            reasons.push_back(
                {nameOf(finding.reason), finding.bars, finding.bits.size(), finding.evidence, finding.instead});
        }
        if (!reasons.empty()) {
            details["reasons"] = std::move(reasons);
        }
        if (m_page.probed().device() != nullptr) {
            details["matches"] = matchesOf(report);
        }
        if (Json chain = chainOf(instance, probe); !chain.is_null()) {
            details["why"] = std::move(chain);
        }
        return details;
    }

    /// For each bit: its grade, the reason when it is gone, the nets of the device, and what speaks for them.
    static Json matchesOf(const analysis::SignalReport &report)
    {
        Json matches = Json::array();
        for (const analysis::ProbeBit &bit : report.bits) {
            if (!bit.match) {
                matches.push_back(nullptr);
                continue;
            }
            Json targets = Json::array();
            for (const analysis::ProbeTarget &target : bit.match->targets) {
                targets.push_back((target.inverted ? "~" : "") +
                                  VDBHelper::getNetFullName(target.net, target.instance));
            }
            const bool isGone = bit.match->grade == analysis::ProbeGrade::Gone;
            matches.push_back({nameOf(bit.match->grade), isGone ? nameOf(bit.match->reason) : "", std::move(targets),
                               bit.match->cell, bit.match->evidence});
        }
        return matches;
    }

    /// The chains of the first bit that clocks reach; null when there is none or the text is long enough.
    Json chainOf(IVDBInstance &instance, const Probe &probe)
    {
        if (m_chainBytes >= m_limits.chainBytes) {
            return nullptr;
        }
        for (std::size_t bit = 0; bit < probe.bits.size(); ++bit) {
            const IVDBNet *const net = probe.bits[bit];
            if (net == nullptr) {
                continue;
            }
            const analysis::LaunchClocks launch = m_page.clocks().launch(&instance, net);
            if (launch.clocks.empty() && launch.networks.empty() && bit + 1 < probe.bits.size()) {
                continue;
            }
            Json chain = jsonOf(m_page.clocks().why(&instance, net), m_page.clocks());
            chain["bit"] = bit;
            m_chainBytes += jsonText(chain).size();
            ++m_chains;
            return chain;
        }
        return nullptr;
    }

    PageDesign &m_page;
    PagePart &m_part;
    const PageDetailsLimits m_limits;
    std::uint64_t m_signals = 0;
    std::uint64_t m_verdicts = 0;
    std::uint64_t m_chains = 0;
    std::uint64_t m_chainBytes = 0;
};

} // namespace

Json writeDetails(PageDesign &page, PagePart &part, const PageDetailsLimits &limits, const Interrupt &interrupt)
{
    DetailsWriter writer(page, part, limits);
    writer.write(interrupt);
    return writer.counts();
}

} // namespace kvr::netlistdb::tool
