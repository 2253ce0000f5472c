#include "base/Choice.h"
#include "base/Failure.h"
#include "base/NumberOption.h"
#include "base/UntilExit.h"
#include "commands/Command.h"
#include "commands/KindOption.h"
#include "commands/Session.h"
#include "design/Design.h"
#include "design/NamePattern.h"
#include "design/PathResolver.h"
#include "design/PathSpellings.h"
#include "design/SearchWalk.h"

#include <fmt/format.h>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

enum class Sort { None, Name, Width };

class SearchCommand : public DesignCommand {
  public:
    const char *name() const override { return "search"; }
    const char *summary() const override { return "Find instances, nets and buses by their full names"; }
    const char *arguments() const override { return "DESIGN... PATTERN [OPTIONS]"; }
    const char *more() const override
    {
        return "PATTERN is looked for anywhere in the full name, which joins the names of all levels with '/'. With\n"
               "--glob it must match the whole full name: '*' and '?' stand for text within one level, '**' for text\n"
               "across levels, brackets for themselves; a backslash takes the meaning of '*' and '?' away. The\n"
               "results come in the order of the walk, level by level; within an instance buses come before nets.\n\n"
               "Examples:\n"
               "  netlistdb search soc.json tx_ready\n"
               "  netlistdb search soc.json '(rx|tx)_valid$' --regex\n"
               "  netlistdb search soc.json 'u_uart/**_q[?]' --glob --user-nets\n"
               "  netlistdb search soc.json clk -i --from u_dsp --limit 20 --format csv -o clocks.csv";
    }

    void addOptions(CLI::App &app, CommonOptions &common) override
    {
        CLI::Option *regex = app.add_flag("--regex", m_regex, "PATTERN is a regular expression");
        app.add_flag("--glob", m_glob, "PATTERN has wildcards: * and ? within a level, ** across levels")
            ->excludes(regex);
        app.add_flag("-i,--ignore-case", m_ignoreCase, "Upper and lower case are the same");
        app.add_flag("--user-nets", m_param.userNetsOnly, "Leave out nets and buses without source position");
        app.add_flag("--user-modules", m_param.userModulesOnly,
                     "Leave out instances of modules without source position, with all below them");
        static const std::map<std::string, Sort> SORTS = {{"name", Sort::Name}, {"width", Sort::Width}};
        addChoice(app, "--sort", m_sort, "Order of the nets and buses of each instance (default: the netlist's)",
                  "name|width", SORTS);
        app.add_option("--from", m_from, "Search below the instance PATH only")->type_name("PATH");
        addKinds(app, m_kinds, "instance,net,bus");
        addNumber(app, "--limit", m_limit, 1, "Stop after N results");
        DesignCommand::addOptions(app, common);
        addPathsOption(app, common);
    }

    int run(Session &session) override
    {
        using Kind = NamePattern::Kind;
        const NamePattern pattern(m_regex  ? Kind::Regex
                                  : m_glob ? Kind::Glob
                                           : Kind::Plain,
                                  m_own.front(), m_ignoreCase);
        const UntilExit design(loadDesign(m_design, Clocks::No, session.reading()));
        m_param.startItem = &PathResolver(*design).startOf(m_from);
        m_param.sortItems = m_sort != Sort::None;
        m_param.nameOrder = m_sort == Sort::Name ? SORT_ASCENDING : SORT_NONE;
        m_param.widthOrder = m_sort == Sort::Width ? SORT_ASCENDING : SORT_NONE;
        session.stats.begin("search");
        const auto writer = session.makeWriter();
        ResultHead head;
        head.command = "search";
        head.facts = {
            {"top", design->nameOf(design->top())}, {"form", nameOf(design->form())}, {"pattern", m_own.front()}};
        SearchWalk results(*design, m_param, pattern, m_kinds, m_limit);
        head.columns = results.columns();
        writer->begin(head);
        const Ending ending = walk(results, *writer, session);
        session.stats.end();
        const int exitCode = session.finish(*writer, results.found() > 0, ending);
        if (exitCode == EXIT_NOTHING_FOUND) {
            session.note(fmt::format("no full name{} {} '{}'{}", m_kinds.all() ? "" : " of that kind",
                                     m_glob || m_regex ? "matches" : "holds", m_own.front(), hint(m_own.front())));
        }
        return exitCode;
    }

  protected:
    std::size_t leastOwnArguments() const override { return 1; }

  private:
    /// What to try where nothing was found.
    std::string hint(const std::string &pattern) const
    {
        if (!m_glob && !m_regex && hasWildcard(pattern)) {
            return "; --glob takes * and ? for wildcards";
        }
        if (!m_glob && !m_regex && pattern.find('.') != std::string::npos) {
            return "; levels are separated by '/'";
        }
        return m_glob ? "; --glob matches whole names, and '**' any number of levels" : "";
    }

    Ending walk(SearchWalk &results, ResultWriter &writer, Session &session) const
    {
        const Interrupt::Action cancel(session.interrupt, [&results] { results.cancel(); });
        while (!session.interrupt.requested() && results.step(writer)) {
            writer.tick();
        }
        return session.interrupt.requested() ? Ending::Interrupted
               : results.isAtLimit()         ? Ending::Limit
                                             : Ending::Complete;
    }

    bool m_regex = false;
    bool m_glob = false;
    bool m_ignoreCase = false;
    Sort m_sort = Sort::None;
    std::string m_from;
    Kinds m_kinds;
    std::uint64_t m_limit = UINT64_MAX;
    VDBSearchParam m_param;
};

} // namespace

std::unique_ptr<Command> makeSearchCommand()
{
    return std::make_unique<SearchCommand>();
}

} // namespace kvr::netlistdb::tool
