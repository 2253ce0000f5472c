#include "base/Failure.h"
#include "commands/Command.h"
#include "commands/CrossingOptions.h"
#include "commands/Session.h"
#include "design/CrossingRows.h"
#include "design/CrossingRules.h"
#include "design/CrossingWords.h"
#include "design/Design.h"
#include "design/NearestNames.h"
#include "design/SourceText.h"
#include "output/Json.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <map>
#include <memory>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

using analysis::Crossing;
using analysis::CrossingClass;

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
        app.add_option("--from", m_from, "Show crossings from this clock only")->type_name("CLOCK");
        app.add_option("--to", m_to, "Show crossings to this clock only")->type_name("CLOCK");
        addClasses(app, "--class", m_classes, "Show these classes only, separated by commas");
        addSeverities(app, "--severity", m_severities, "Show these severities only");
        app.add_option("--waivers", m_waivers, "Read clock groups and waivers from FILE")->type_name("FILE");
        app.add_flag("--waived", m_waived, "Show crossings that are waived, too");
        app.add_flag("--all-classes", m_allClasses,
                     "Show every class that a crossing has, not only the most telling one");
        app.add_flag("--bits", m_bits, "Show each bit of a vector by itself");
        addFailures(app, "--fail-on", m_failures, "Exit code 1 when a crossing of such a class, or so bad, is shown");
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
        const auto design = loadDesign(m_design, Clocks::Yes, session.reading());
        session.progress.begin("following clocks");
        session.stats.begin("clocks");
        const analysis::ClockMap &clocks = design->clocks();
        checkClock(clocks, m_from);
        checkClock(clocks, m_to);
        session.stats.begin("crossings");
        const analysis::Crossings crossings(clocks, m_rules.groups(clocks));
        session.progress.clear();
        choose(crossings, clocks);
        const auto writer = session.makeWriter();
        ResultHead head;
        head.command = "crossings";
        head.facts = {{"top", design->nameOf(design->top())}, {"form", nameOf(design->form())}};
        head.columns = columns();
        writer->begin(head);
        for (const CrossingRow &row : m_rows->rows()) {
            write(row, clocks, *writer);
        }
        const Json summary = summaryOf(clocks);
        session.stats.end();
        const bool found = !m_rows->rows().empty();
        writer->end(Ending::Complete, {{"summary", &summary}, {"waived", m_waivedCount}});
        if (writer->isTable() && found) {
            writeSummary(summary, session);
        }
        const int exitCode = session.finish(m_failures.given() ? !m_failed : found);
        for (const std::string &line : m_rules.unused()) {
            session.note(line);
        }
        if (m_waivedCount > 0 && !m_waived) {
            session.note(fmt::format("{} crossing{} waived", m_waivedCount, m_waivedCount == 1 ? " is" : "s are"));
        }
        return exitCode;
    }

  private:
    static std::vector<Column> columns()
    {
        return {{"severity", "SEVERITY"},
                {"class", "CLASS"},
                {"launch", "LAUNCH", Look::Name},
                {"capture", "CAPTURE", Look::Name},
                {"from", "FROM"},
                {"to", "TO"},
                {"pin", "PIN"},
                {"bits", "BITS", Look::Plain, true},
                {"cells", "CELLS", Look::Plain, true},
                {nullptr, "SOURCE", Look::Dim},
                {nullptr, "NOTE", Look::Dim},
                {"stages", nullptr},
                {"kept", nullptr},
                {"logic", nullptr},
                {"several_sources", nullptr},
                {"control", nullptr},
                {"meets", nullptr},
                {"from_cell", nullptr},
                {"from_type", nullptr},
                {"to_cell", nullptr},
                {"to_type", nullptr},
                {"waived", nullptr},
                {"file", nullptr},
                {"line", nullptr}};
    }

    static void checkClock(const analysis::ClockMap &clocks, const std::string &text)
    {
        if (text.empty() || text == "(none)") {
            return;
        }
        const NamePattern pattern(NamePattern::Kind::Glob, text, false);
        NearestNames nearest(text);
        for (const analysis::Clock &clock : clocks.clocks()) {
            if (isClockCalled(clock, pattern)) {
                return;
            }
            nearest.offer(clock.name);
        }
        throw wrongUsage(fmt::format("no clock '{}'{}", text, didYouMean(nearest.best())));
    }

    static bool isClock(const analysis::ClockMap &clocks, std::optional<analysis::ClockId> clock,
                        const std::string &text)
    {
        if (text.empty()) {
            return true;
        }
        return clock ? isClockCalled(clocks.clocks()[*clock], NamePattern(NamePattern::Kind::Glob, text, false))
                     : text == "(none)";
    }

    void choose(const analysis::Crossings &crossings, const analysis::ClockMap &clocks)
    {
        m_rows = std::make_unique<CrossingRows>(m_bits);
        for (const Crossing &crossing : crossings.all()) {
            if (!isClock(clocks, crossing.launch, m_from) || !isClock(clocks, crossing.capture, m_to)) {
                continue;
            }
            const CrossingRules::Waiver *const waiver = m_rules.waiverOf(crossing, clocks);
            for (std::size_t number = 0; number < analysis::CROSSING_CLASSES; ++number) {
                const auto kind = static_cast<CrossingClass>(number);
                const bool isShown = m_allClasses ? crossing.holds(kind) : crossing.kind == kind;
                if (isShown && m_classes.has(kind) && m_severities.has(severityOf(kind))) {
                    take(crossing, kind, waiver);
                }
            }
        }
    }

    void take(const Crossing &crossing, CrossingClass kind, const CrossingRules::Waiver *waiver)
    {
        if (kind == crossing.kind) {
            m_counts[{crossing.launch, crossing.capture}].add(crossing, waiver != nullptr);
            m_waivedCount += waiver != nullptr ? 1 : 0;
        }
        if (waiver == nullptr) {
            m_failed = m_failed || m_failures.has(kind);
        }
        if (waiver == nullptr || m_waived) {
            m_rows->add(crossing, kind, waiver);
        }
    }

    void write(const CrossingRow &row, const analysis::ClockMap &clocks, ResultWriter &writer) const
    {
        const Crossing &crossing = *row.first;
        const auto optional = [](const std::string &text) {
            return text.empty() ? Value() : Value(std::string_view(text));
        };
        const std::string launch = launchName(crossing, clocks);
        const std::string from = row.from();
        const std::string to = row.to();
        const std::string pin = m_bits ? crossing.to.pin : crossing.to.pin.substr(0, crossing.to.pin.find('['));
        const std::string source = sourceText(crossing.place.file, crossing.place.line, m_directory);
        const std::string note = noteOf(row);
        const bool hasPlace = !crossing.place.file.empty();
        const bool showsLaunch = crossing.launch.has_value() || writer.isTable();
        writer.row({std::string_view(nameOf(severityOf(row.kind))),
                    std::string_view(nameOf(row.kind)),
                    showsLaunch ? Value(std::string_view(launch)) : Value(),
                    std::string_view(clocks.clocks()[crossing.capture].name),
                    std::string_view(from),
                    std::string_view(to),
                    std::string_view(pin),
                    row.bits,
                    std::uint64_t(row.cells),
                    std::string_view(source),
                    std::string_view(note),
                    std::uint64_t(row.stages),
                    crossing.isKept,
                    crossing.hasLogic,
                    crossing.hasSeveralSources,
                    optional(crossing.control),
                    optional(crossing.meets),
                    optional(crossing.from.cell),
                    optional(crossing.from.cellType),
                    std::string_view(crossing.to.cell),
                    std::string_view(crossing.to.cellType),
                    row.waiver != nullptr ? Value(std::string_view(row.waiver->reason())) : Value(),
                    optional(crossing.place.file),
                    hasPlace ? Value(std::uint64_t(crossing.place.line)) : Value()});
    }

    /// What a person wants to know beside the class.
    static std::string noteOf(const CrossingRow &row)
    {
        const Crossing &crossing = *row.first;
        std::string note;
        const auto add = [&note](const std::string &text) { note += (note.empty() ? "" : "; ") + text; };
        if (row.stages > 0) {
            add(fmt::format("{} flip-flops", row.stages));
        }
        if (!crossing.control.empty()) {
            add("opened by " + crossing.control);
        }
        if (!crossing.meets.empty()) {
            add("meets another at " + crossing.meets);
        }
        if (row.waiver != nullptr) {
            add("waived: " + row.waiver->reason());
        }
        return note;
    }

    Json summaryOf(const analysis::ClockMap &clocks) const
    {
        Json summary = Json::array();
        for (const auto &[pair, counts] : m_counts) {
            Json line;
            line["launch"] = pair.first ? Json(clocks.clocks()[*pair.first].name) : Json(nullptr);
            line["capture"] = clocks.clocks()[pair.second].name;
            line["safe"] = counts.safe;
            line["warning"] = counts.warning;
            line["unsafe"] = counts.unsafe;
            line["waived"] = counts.waived;
            summary.push_back(line);
        }
        return summary;
    }

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

    std::string m_from;
    std::string m_to;
    CrossingClasses m_classes;
    Severities m_severities;
    std::string m_waivers;
    bool m_waived = false;
    bool m_allClasses = false;
    bool m_bits = false;
    CrossingFailures m_failures;
    CrossingRules m_rules;
    std::unique_ptr<CrossingRows> m_rows;
    std::map<std::pair<std::optional<analysis::ClockId>, analysis::ClockId>, CrossingCounts> m_counts;
    std::uint64_t m_waivedCount = 0;
    bool m_failed = false;
    std::string m_directory = workingDirectory();
};

} // namespace

std::unique_ptr<Command> makeCrossingsCommand()
{
    return std::make_unique<CrossingsCommand>();
}

} // namespace kvr::netlistdb::tool
