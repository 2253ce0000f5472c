#include "base/UntilExit.h"
#include "commands/PlanAction.h"
#include "design/PlanFile.h"
#include "design/PlanSteps.h"
#include "design/ProbePlanner.h"
#include "output/Json.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace kvr::netlistdb::tool {

using analysis::PlanBit;
using analysis::PlanFinding;
using analysis::PlanProbe;
using analysis::PlanVerdict;
using analysis::RebuiltProbe;

namespace {

/// Writes what became of each probe, and counts.
class CheckRows {
  public:
    CheckRows(ResultWriter &writer, const PlanRequest &request, Design &design) : m_writer(writer), m_request(request)
    {
        ResultHead head;
        head.command = "plan-check";
        head.facts = {{"plan", std::string_view(request.file)}, {"top", design.nameOf(design.top())}};
        head.columns = {{"probe", nullptr},           {nullptr, "PROBE"},  {"verdict", "VERDICT", Look::Name},
                        {"accepted", nullptr},        {"text", nullptr},   {"also", nullptr},
                        {nullptr, "NOTE", Look::Dim}, {"clocks", nullptr}, {"bits", nullptr}};
        writer.begin(head);
    }

    /// @p width: what the name of the probe stands for in this build; 0 when it is gone.
    void add(const PlanProbe &probe, const RebuiltProbe &now, std::size_t width)
    {
        const std::vector<PlanFinding> findings = analysis::findChanges(probe, now);
        ++m_counts.at(static_cast<std::size_t>(findings.front().verdict));
        const bool accepted = std::all_of(findings.begin(), findings.end(), [this](const PlanFinding &finding) {
            const auto verdict = static_cast<std::size_t>(finding.verdict);
            return finding.verdict == PlanVerdict::Kept ||
                   (verdict < m_request.accepted.size() && m_request.accepted[verdict]);
        });
        m_allAccepted = m_allAccepted && accepted;
        std::string note = findings.front().text;
        std::vector<std::pair<std::string, std::string>> also;
        for (std::size_t at = 1; at < findings.size(); ++at) {
            also.emplace_back(analysis::nameOf(findings[at].verdict), findings[at].text);
            note += fmt::format("; {} {}", also.back().first, also.back().second);
        }
        const Json bits = bitsOf(probe, now);
        if (m_moved && findings.front().verdict != PlanVerdict::Lost) {
            ++m_onOtherNets;
            note += note.empty() ? "on other nets of the device" : "";
        }
        if (width > probe.bits.size()) {
            note += fmt::format("{}{} bits wide in this build", note.empty() ? "" : "; ", width);
        }
        const std::string shown = shownProbe(probe);
        const std::string clocks = shownClocks(now.clocks);
        m_writer.row({std::string_view(probe.name), std::string_view(shown),
                      std::string_view(analysis::nameOf(findings.front().verdict)), accepted,
                      std::string_view(findings.front().text), &also, std::string_view(note), std::string_view(clocks),
                      &bits});
        m_writer.tick();
    }

    std::vector<Fact> facts() const
    {
        std::vector<Fact> facts;
        for (std::size_t verdict = 0; verdict < m_counts.size(); ++verdict) {
            facts.push_back({KEYS.at(verdict), m_counts.at(verdict)});
        }
        return facts;
    }

    std::string summary() const
    {
        std::string text;
        std::uint64_t all = 0;
        for (std::size_t verdict = 0; verdict < m_counts.size(); ++verdict) {
            all += m_counts.at(verdict);
            if (m_counts.at(verdict) > 0) {
                text += fmt::format("{}{} {}", text.empty() ? "" : ", ", m_counts.at(verdict),
                                    analysis::nameOf(static_cast<PlanVerdict>(verdict)));
            }
        }
        text = fmt::format("{} {}{}{}", all, all == 1 ? "probe" : "probes", text.empty() ? "" : ": ", text);
        return m_onOtherNets == 0 ? text : text + fmt::format("; {} on other nets of the device", m_onOtherNets);
    }

    bool areAllAccepted() const { return m_allAccepted; }
    bool isAnyLost() const { return m_counts.at(static_cast<std::size_t>(PlanVerdict::Lost)) > 0; }

  private:
    static constexpr std::array<const char *, 5> KEYS = {"kept", "renamed", "clock_changed", "split", "lost"};

    /// The bits as they were and as they are. Notes whether one is on another net of the device, or inverted anew.
    Json bitsOf(const PlanProbe &probe, const RebuiltProbe &now)
    {
        m_moved = false;
        Json bits = Json::array();
        for (std::size_t at = 0; at < probe.bits.size(); ++at) {
            const PlanBit &before = probe.bits[at];
            const PlanBit &after = now.bits[at].bit;
            bits.push_back({{"was", before.name},
                            {"net", jsonOrNull(after.name)},
                            {"device_was", jsonOrNull(before.device)},
                            {"device", jsonOrNull(after.device)},
                            {"inverted", after.isInverted},
                            {"grade", after.grade ? Json(analysis::nameOf(*after.grade)) : Json()},
                            {"why", now.bits[at].why}});
            m_moved = m_moved || (after.grade && !after.device.empty() &&
                                  (after.device != before.device || after.isInverted != before.isInverted));
        }
        return bits;
    }

    ResultWriter &m_writer;
    const PlanRequest &m_request;
    std::array<std::uint64_t, 5> m_counts{};
    std::uint64_t m_onOtherNets = 0;
    bool m_moved = false;
    bool m_allAccepted = true;
};

int finish(Session &session, ResultWriter &writer, const CheckRows &rows, bool found)
{
    const int exitCode = session.finish(writer, found, Ending::Complete, rows.facts());
    if (writer.isTable()) {
        session.note(rows.summary());
    }
    return exitCode;
}

} // namespace

int checkPlan(const PlanRequest &request, Session &session)
{
    const analysis::ProbePlan plan = readPlan(request.file);
    const UntilExit held(std::make_unique<ProbePlanner>(request.designs, session.reading()));
    ProbePlanner &planner = *held;
    planner.match(session.reading());
    const auto writer = session.makeWriter();
    CheckRows rows(*writer, request, planner.design());
    for (const PlanProbe &probe : plan.probes) {
        rows.add(probe, planner.rebuilt(probe), planner.widthOf(probe.name));
    }
    return finish(session, *writer, rows, rows.areAllAccepted());
}

int updatePlan(const PlanRequest &request, Session &session)
{
    analysis::ProbePlan plan = readPlan(request.file);
    const std::string former = plan.text();
    OutputStream output(request.file, request.designs, session.interrupt.temporaries());
    const UntilExit held(std::make_unique<ProbePlanner>(request.designs, session.reading()));
    ProbePlanner &planner = *held;
    planner.match(session.reading());
    const auto writer = session.makeWriter();
    CheckRows rows(*writer, request, planner.design());
    for (std::size_t at = 0; at < plan.probes.size();) {
        const RebuiltProbe now = planner.rebuilt(plan.probes[at]);
        rows.add(plan.probes[at], now, planner.widthOf(plan.probes[at].name));
        at += bringUpToDate(plan, at, now, planner);
    }
    if (plan.text() != former) {
        output.write(plan.text());
        output.close();
    }
    return finish(session, *writer, rows, !rows.isAnyLost());
}

} // namespace kvr::netlistdb::tool
