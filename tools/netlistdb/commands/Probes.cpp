#include "base/Failure.h"
#include "base/Interrupt.h"
#include "base/UntilExit.h"
#include "commands/Command.h"
#include "commands/KindOption.h"
#include "commands/Session.h"
#include "commands/VerdictOption.h"
#include "design/ClockWords.h"
#include "design/PathResolver.h"
#include "design/ProbeReasonRows.h"
#include "design/ProbeRows.h"
#include "design/ProbeWalk.h"
#include "design/ProbedDesign.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

using analysis::ProbeVerdict;
using analysis::SignalReport;

class ProbesCommand : public DesignCommand {
  public:
    const char *name() const override { return "probes"; }
    const char *summary() const override { return "Show which nets an analyser may probe, and why not the others"; }
    const char *arguments() const override { return "DESIGN... [POSTMAP] [OPTIONS]"; }
    const char *more() const override
    {
        return "Shows the nets and vectors that the user declared: whether an on-chip analyser may probe them, how "
               "many\n"
               "of their bits, and with which clock. A vector is shown whole, also when some of its bits have other\n"
               "names. The pins of black boxes are no nets of the design. With POSTMAP, DESIGN is the RTL: what no "
               "net\n"
               "of the device carries cannot be probed.\n"
               "  ok       nothing is against it\n"
               "  warning  it may be probed, with something to think of\n"
               "  partly   some of its bits may be probed\n"
               "  no       it may not be probed\n"
               "REASONS says why; docs/probes.md explains each, --why-not shows what it rests on. A table has the "
               "nets\n"
               "of one sampling clock together and ends with what one analyser core for each clock needs.\n\n"
               "Examples:\n"
               "  netlistdb probes soc.json --ok\n"
               "  netlistdb probes soc_rtl.json soc_mapped.json --from u_cpu --format csv -o probes.csv\n"
               "  netlistdb probes soc_rtl.json soc_mapped.json --why-not u_cpu/opcode";
    }

    void addOptions(CLI::App &app, CommonOptions &common) override
    {
        CLI::Option *all = app.add_flag("--all", m_choice.all, "Show nets and buses that no user declared, too");
        CLI::Option *from =
            app.add_option("--from", m_from, "Show what is in the instance PATH and below it only")->type_name("PATH");
        addKinds(app, m_choice.kinds, "net,bus");
        CLI::Option *ok = app.add_flag("--ok", m_ok, "Show only what may be probed, at least some bits of it");
        CLI::Option *verdict = addVerdicts(app, m_choice.verdicts)->excludes(ok);
        CLI::Option *whyNot =
            app.add_option("--why-not", m_whyNot, "Show all that is against probing the net or bus PATH")
                ->type_name("PATH")
                ->excludes(all)
                ->excludes(from)
                ->excludes(ok)
                ->excludes(verdict);
        DesignCommand::addOptions(app, common);
        addPathsOption(app, common);
        app.get_option("--paths")->excludes(whyNot);
    }

    std::vector<std::string> prepare(CommonOptions &common) override
    {
        return prepareForms(common, m_own.empty() ? std::string() : m_own.front());
    }

    int run(Session &session) override
    {
        const UntilExit probed(
            std::make_unique<ProbedDesign>(m_design, m_own.empty() ? std::string() : m_own.front(), session.reading()));
        const int exitCode = m_whyNot.empty() ? list(*probed, session) : explain(*probed, session);
        session.stats.end();
        return exitCode;
    }

  protected:
    std::size_t mostOwnArguments() const override { return 1; }

  private:
    /// A net or bus of the table, and the place of its group.
    struct Entry {
        std::uint64_t group;
        IVDBInstance *instance;
        const Probe *probe;
    };

    static std::vector<Fact> factsOf(ProbedDesign &probed)
    {
        Design &design = probed.design();
        std::vector<Fact> facts = {{"top", design.nameOf(design.top())}, {"form", nameOf(design.form())}};
        if (probed.device() != nullptr) {
            facts.push_back({"post_map", std::string_view(probed.device()->name())});
        }
        return facts;
    }

    int list(ProbedDesign &probed, Session &session)
    {
        IVDBInstance &start = PathResolver(probed.design()).startOf(m_from);
        const auto writer = session.makeWriter();
        // What is piped into other programs is to be probed.
        m_choice.verdicts.finish(m_ok || session.options.paths);
        ProbeLists lists(probed.design());
        ProbeWalk probes(lists, probed.report(), start, m_choice);
        ProbeRows rows(probed.design(), probed.device() != nullptr, *writer);
        writer->begin({"probes", factsOf(probed), ProbeRows::columns(probed.device() != nullptr)});
        const Interrupt::Action stop(session.interrupt);
        const bool isWhole =
            walk(probes, session, *writer, rows) && (!writer->isTable() || writeSorted(probes, session, rows));
        const Json groups = groupsOf(m_groups, probed.design().clocks());
        std::vector<Fact> facts;
        if (isWhole) {
            facts.push_back({"groups", &groups});
            for (std::size_t verdict = 0; verdict < VERDICTS.size(); ++verdict) {
                facts.push_back({nameOf(VERDICTS[verdict]), m_counts[verdict]});
            }
        }
        const bool hasSummary = isWhole && m_found && writer->isTable();
        if (hasSummary) {
            writer->end(Ending::Complete, facts);
            session.output.write("\n");
            writeGroups(groups, *session.makeWriter());
        }
        const int exitCode =
            hasSummary ? session.finish(true)
                       : session.finish(*writer, m_found, isWhole ? Ending::Complete : Ending::Interrupted, facts);
        if (hasSummary) {
            session.note(fmt::format("{} nets and buses: {} ok, {} warning, {} partly, {} no",
                                     m_counts[0] + m_counts[1] + m_counts[2] + m_counts[3], m_counts[0], m_counts[1],
                                     m_counts[2], m_counts[3]));
        }
        return exitCode;
    }

    /// Writes what the walk finds, or for a table keeps it; false when interrupted.
    bool walk(ProbeWalk &probes, Session &session, ResultWriter &writer, ProbeRows &rows)
    {
        ReportedProbe found;
        for (ProbeWalk::Step step = probes.step(found); step != ProbeWalk::Step::End; step = probes.step(found)) {
            if (session.interrupt.requested()) {
                return false;
            }
            if (step == ProbeWalk::Step::Passed) {
                continue;
            }
            m_found = true;
            ++m_counts[static_cast<std::size_t>(found.report.verdict)];
            m_groups.add(found.report);
            if (writer.isTable()) {
                // Reports of all nets at once would take much memory.
                m_entries.push_back({groupOf(found.report), found.instance, found.probe});
            } else {
                rows.write(*found.instance, *found.probe, found.report);
            }
        }
        return !session.interrupt.requested();
    }

    /// What has no clock stands behind what has one, and what may not be probed behind that.
    static std::uint64_t groupOf(const SignalReport &report)
    {
        constexpr std::uint64_t NO_CLOCK = std::uint64_t(1) << 32;
        const std::optional<analysis::ClockId> clock = samplingClockOf(report);
        return report.verdict == ProbeVerdict::No ? NO_CLOCK + 1 : clock ? *clock : NO_CLOCK;
    }

    bool writeSorted(const ProbeWalk &probes, Session &session, ProbeRows &rows)
    {
        std::stable_sort(m_entries.begin(), m_entries.end(),
                         [](const Entry &a, const Entry &b) { return a.group < b.group; });
        for (const Entry &entry : m_entries) {
            if (session.interrupt.requested()) {
                return false;
            }
            rows.write(*entry.instance, *entry.probe, probes.reportOf(*entry.instance, *entry.probe));
        }
        return true;
    }

    /// All that is against probing one net.
    int explain(ProbedDesign &probed, Session &session)
    {
        const auto [report, names] = askProbe(probed.report(), PathResolver(probed.design()).nets(m_whyNot));
        const bool isFound = !report.findings.empty();
        const auto writer = session.makeWriter();
        if (writer->isTable()) {
            session.output.write(probeReasonsText(m_whyNot, report, names));
            return session.finish(isFound);
        }
        std::vector<Fact> facts = factsOf(probed);
        facts.insert(facts.end(), {{"path", std::string_view(m_whyNot)},
                                   {"verdict", std::string_view(nameOf(report.verdict))},
                                   {"width", std::uint64_t(report.bits.size())},
                                   {"bits", std::uint64_t(report.probeable())}});
        writer->begin({"probes-why-not", facts, probeReasonColumns()});
        writeProbeReasons(report, names, *writer);
        return session.finish(*writer, isFound, Ending::Complete);
    }

    bool m_ok = false;
    std::string m_from;
    std::string m_whyNot;
    ProbeChoice m_choice;
    bool m_found = false;
    std::vector<Entry> m_entries;
    analysis::ProbeGroups m_groups;
    std::array<std::uint64_t, VERDICTS.size()> m_counts{};
};

} // namespace

std::unique_ptr<Command> makeProbesCommand()
{
    return std::make_unique<ProbesCommand>();
}

} // namespace kvr::netlistdb::tool
