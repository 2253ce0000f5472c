#include "base/UntilExit.h"
#include "commands/Command.h"
#include "commands/CrossingOptions.h"
#include "commands/Session.h"
#include "design/ClockFilter.h"
#include "design/CrossingList.h"
#include "design/CrossingRules.h"
#include "design/Design.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

class CrossingsCommand : public DesignCommand {
  public:
    const char *name() const override { return "crossings"; }
    const char *summary() const override { return "Show the paths between clocks, told apart by how they cross"; }
    const char *more() const override
    {
        return "Shows the most telling class of each path from registers of one clock to a register of another, bits "
               "of\n"
               "one vector together, and counts them for each pair of clocks. docs/crossings.md draws the classes.\n"
               "CLOCK is a name of a clock, or a wildcard for it: '*' and '?' within a level, '**' across levels;\n"
               "'(none)' stands for a port or black box that sets or resets a register. FILE holds lines\n"
               "`clock_groups [-asynchronous|-exclusive] CLOCK... , CLOCK...` and\n"
               "`waive FROM TO [class=CLASS,...] REASON...`.\n"
               "With --fail-on the exit code is 1 when a crossing that is shown has one of the classes, or is as bad\n"
               "as one of the severities or worse, and 0 otherwise.\n\n"
               "Examples:\n"
               "  netlistdb crossings soc.json\n"
               "  netlistdb crossings soc.json --from clk_adc --severity unsafe --bits\n"
               "  netlistdb crossings soc.json --waivers soc.waivers --fail-on unsafe,reconvergence";
    }

    void addOptions(CLI::App &app, CommonOptions &common) override
    {
        app.add_option("--from", m_choice.from, "Show crossings from this clock only")->type_name("CLOCK");
        app.add_option("--to", m_choice.to, "Show crossings to this clock only")->type_name("CLOCK");
        addClasses(app, "--class", m_choice.classes, "Show these classes only, separated by commas");
        addSeverities(app, "--severity", m_choice.severities, "Show these severities only");
        app.add_option("--waivers", m_waivers, "Read clock groups and waivers from FILE")->type_name("FILE");
        app.add_flag("--waived", m_choice.waived, "Show crossings that are waived, too");
        app.add_flag("--all-classes", m_choice.allClasses,
                     "Show every class that a crossing has, not only the most telling one");
        app.add_flag("--bits", m_choice.bits, "Show each bit of a vector by itself");
        addFailures(app, "--fail-on", m_choice.failures,
                    "Exit code 1 when a crossing of such a class, or so bad, is shown");
        DesignCommand::addOptions(app, common);
    }

    std::vector<std::string> prepare(CommonOptions &common) override
    {
        std::vector<std::string> files = DesignCommand::prepare(common);
        if (!m_waivers.empty()) {
            m_rules = CrossingRules(m_waivers);
            files.push_back(m_waivers);
        }
        return files;
    }

    int run(Session &session) override
    {
        const UntilExit design(loadDesign(m_design, Clocks::Yes, session.reading()));
        session.progress.begin("following clocks");
        session.stats.begin("clocks");
        const analysis::ClockMap &clocks = design->clocks();
        checkClockName(m_choice.from, clocks);
        checkClockName(m_choice.to, clocks);
        session.stats.begin("crossings");
        const UntilExit crossings(std::make_unique<const analysis::Crossings>(clocks, m_rules.groups(clocks)));
        session.progress.clear();
        const CrossingRows rows(crossings->all(), clocks, m_rules, m_choice.rows());
        CrossingList list(rows, clocks, m_choice);
        const auto writer = session.makeWriter();
        ResultHead head;
        head.command = "crossings";
        head.facts = {{"top", design->nameOf(design->top())}, {"form", nameOf(design->form())}};
        head.columns = list.columns();
        writer->begin(head);
        while (list.step(*writer)) {
        }
        const CrossingTotals totals = list.totals();
        const Json summary = totals.summary(clocks);
        session.stats.end();
        const bool found = !totals.isEmpty;
        writer->end(Ending::Complete, {{"summary", &summary}, {"waived", totals.waived}});
        if (writer->isTable() && found) {
            writeSummary(summary, session);
        }
        const int exitCode = session.finish(m_choice.failures.given() ? !totals.hasFailed : found);
        for (const std::string &line : m_rules.unused(totals.usedWaivers)) {
            session.note(line);
        }
        if (totals.waived > 0 && !m_choice.waived) {
            session.note(fmt::format("{} crossing{} waived", totals.waived, totals.waived == 1 ? " is" : "s are"));
        }
        return exitCode;
    }

  private:
    static void writeSummary(const Json &summary, Session &session)
    {
        session.output.write("\n");
        const auto writer = session.makeWriter();
        ResultHead head;
        head.command = "crossings";
        head.columns = {{"launch", "LAUNCH", Look::Name},        {"capture", "CAPTURE", Look::Name},
                        {"safe", "SAFE", Look::Plain, true},     {"warning", "WARNING", Look::Plain, true},
                        {"unsafe", "UNSAFE", Look::Plain, true}, {"waived", "WAIVED", Look::Plain, true}};
        writer->begin(head);
        for (const Json &line : summary) {
            const std::string launch = line["launch"].is_null() ? "(none)" : line["launch"].get<std::string>();
            const auto capture = line["capture"].get<std::string>();
            const auto count = [&line](const char *key) { return Value(line[key].get<std::uint64_t>()); };
            writer->row({std::string_view(launch), std::string_view(capture), count("safe"), count("warning"),
                         count("unsafe"), count("waived")});
        }
        writer->end(Ending::Complete, {});
    }

    CrossingChoice m_choice;
    std::string m_waivers;
    CrossingRules m_rules;
};

} // namespace

std::unique_ptr<Command> makeCrossingsCommand()
{
    return std::make_unique<CrossingsCommand>();
}

} // namespace kvr::netlistdb::tool
