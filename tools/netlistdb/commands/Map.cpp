#include "base/Failure.h"
#include "base/Progress.h"
#include "base/Stats.h"
#include "base/UntilExit.h"
#include "commands/Command.h"
#include "commands/Session.h"
#include "design/Design.h"
#include "design/MatchRows.h"
#include "design/MatchedNets.h"

#include <CLI/CLI.hpp>
#include <array>
#include <fmt/format.h>
#include <netlistdb/analysis/CrossProbe.h>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

std::string gradeNames()
{
    std::string names;
    for (const analysis::ProbeGrade grade : GRADES) {
        names.append(names.empty() ? "" : ",").append(analysis::nameOf(grade));
    }
    return names;
}

class MapCommand : public Command {
  public:
    const char *name() const override { return "map"; }
    const char *summary() const override { return "Show what nets of the RTL are in the device"; }
    const char *arguments() const override { return "ELABORATED POSTMAP [PATH...] [OPTIONS]"; }
    const char *more() const override
    {
        return "For every declared net of the elaborated form: the post-map nets that carry its value, and how sure "
               "that is.\n"
               "  exact       the same name, and nothing contradicts\n"
               "  register    a register that behaves like this one\n"
               "  structural  computes the same from what is matched already\n"
               "  merged      equal to another net, with which it shares the post-map net\n"
               "  gone        no net carries its value; the reason is said\n"
               "  unknown     not decided\n"
               "A ~ in front of a net says that it carries the inverse. PATH is a net or bus, or an instance, which\n"
               "stands for all that is in it and below.\n\n"
               "Examples:\n"
               "  netlistdb map soc_rtl.json soc_mapped.json u_cpu/pc_q\n"
               "  netlistdb map soc_rtl.json soc_mapped.json --grade gone,unknown --format csv";
    }

    void addOptions(CLI::App &app, CommonOptions &common) override
    {
        app.add_flag("--reverse", m_reverse, "Begin at the post-map nets");
        app.add_flag("--all", m_all, "Show nets and buses that no user declared, too");
        app.add_option_function<std::vector<std::string>>(
               "--grade", [this](const std::vector<std::string> &names) { takeGrades(names); },
               "Show nets of these grades only")
            ->delimiter(',')
            ->type_name(gradeNames())
            ->allow_extra_args(false);
        addReadingOptions(app, common);
        addOutputOptions(app, common);
        addReportOptions(app, common);
    }

    void takeArguments(std::vector<std::string> arguments, const CommonOptions & /*common*/) override
    {
        if (arguments.size() < 2) {
            throw wrongUsage(fmt::format("{}; usage: netlistdb map {}",
                                         arguments.empty() ? "no design given" : "the post-map netlist is missing",
                                         this->arguments()));
        }
        m_elaborated = arguments[0];
        m_postMap = arguments[1];
        m_paths.assign(arguments.begin() + 2, arguments.end());
    }

    std::vector<std::string> prepare(CommonOptions & /*common*/) override
    {
        checkStandardInput(m_elaborated, m_postMap);
        return {m_elaborated, m_postMap};
    }

    int run(Session &session) override
    {
        const UntilExit pair(
            std::make_unique<DesignPair>(loadDesignPair({m_elaborated}, m_postMap, session.reading())));
        Design &from = m_reverse ? *pair->postMap : *pair->elaborated;
        PathResolver resolver(from);
        MatchedNets nets(from, resolver, m_paths, m_all);
        session.progress.begin("matching");
        session.stats.begin("match");
        const UntilExit probe(std::make_unique<const analysis::CrossProbe>(from.database()));
        session.progress.clear();
        const auto writer = session.makeWriter();
        ResultHead head;
        head.command = "map";
        head.facts = {{"top", from.nameOf(from.top())},
                      {"elaborated", std::string_view(pair->elaborated->name())},
                      {"post_map", std::string_view(pair->postMap->name())},
                      {"reverse", m_reverse}};
        head.columns = MatchRows::columns();
        writer->begin(head);
        MatchRows rows(*writer);
        std::array<std::uint64_t, GRADES.size()> counts{};
        for (MatchedNet net{}; nets.next(net);) {
            analysis::ProbeMatch match =
                m_reverse ? probe->findBack(net.instance, net.net) : probe->find(net.instance, net.net);
            const auto grade = static_cast<std::size_t>(match.grade);
            ++counts[grade];
            if (m_grades.empty() || m_grades[grade]) {
                rows.add(net.name, std::move(match));
            }
        }
        rows.finish();
        session.stats.end();
        return finish(session, *writer, counts, rows.written());
    }

  private:
    void takeGrades(const std::vector<std::string> &names)
    {
        m_grades.assign(GRADES.size(), false);
        for (const std::string &name : names) {
            std::size_t at = 0;
            while (at < GRADES.size() && name != analysis::nameOf(GRADES[at])) {
                ++at;
            }
            if (at == GRADES.size()) {
                throw CLI::ValidationError("--grade: '" + name + "' is none of " + gradeNames());
            }
            m_grades[at] = true;
        }
    }

    static int finish(Session &session, ResultWriter &writer, const std::array<std::uint64_t, GRADES.size()> &counts,
                      bool found)
    {
        std::vector<Fact> facts;
        std::uint64_t all = 0;
        for (const std::uint64_t count : counts) {
            all += count;
        }
        facts.push_back({"bits", all});
        std::string summary;
        for (std::size_t grade = 0; grade < counts.size(); ++grade) {
            facts.push_back({analysis::nameOf(GRADES[grade]), counts[grade]});
            if (counts[grade] > 0) {
                summary += fmt::format("{}{} {} ({:.1f} %)", summary.empty() ? "" : ", ", counts[grade],
                                       analysis::nameOf(GRADES[grade]),
                                       100.0 * static_cast<double>(counts[grade]) / static_cast<double>(all));
            }
        }
        const int exitCode = session.finish(writer, found, Ending::Complete, facts);
        if (writer.isTable() && all > 0) {
            session.note(fmt::format("{} bits: {}", all, summary));
        }
        return exitCode;
    }

    std::string m_elaborated;
    std::string m_postMap;
    std::vector<std::string> m_paths;
    bool m_reverse = false;
    bool m_all = false;
    std::vector<bool> m_grades; ///< by grade; empty: all
};

} // namespace

std::unique_ptr<Command> makeMapCommand()
{
    return std::make_unique<MapCommand>();
}

} // namespace kvr::netlistdb::tool
