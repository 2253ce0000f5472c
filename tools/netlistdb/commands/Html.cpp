#include "base/Failure.h"
#include "base/NumberOption.h"
#include "base/UntilExit.h"
#include "commands/Command.h"
#include "commands/Session.h"
#include "design/ProbedDesign.h"
#include "page/Page.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <unistd.h>

namespace kvr::netlistdb::tool {

namespace {

/// @p word as a shell takes it for one word.
std::string quoted(const std::string &word)
{
    constexpr const char *PLAIN = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_./+,:@%=-";
    if (!word.empty() && word.find_first_not_of(PLAIN) == std::string::npos) {
        return word;
    }
    std::string text = "'";
    for (const char each : word) {
        text += each == '\'' ? std::string("'\\''") : std::string(1, each);
    }
    return text + "'";
}

class HtmlCommand : public DesignCommand {
  public:
    const char *name() const override { return "html"; }
    const char *summary() const override { return "Write a page that shows the design in a browser"; }
    const char *more() const override
    {
        return "The page is one file that needs no network and no server: the hierarchy, the clocks, the paths\n"
               "between them, and a card for each net, bus, instance and module, with a search over all names.\n"
               "Probe verdicts and the chains that prove clocks are in the page for the first nets and buses only,\n"
               "those nearest to the top first; the others name the command that shows theirs.\n\n"
               "Examples:\n"
               "  netlistdb html soc.json -o soc.html\n"
               "  netlistdb html soc_rtl.json --post-map soc_mapped.json -o soc.html";
    }

    void addOptions(CLI::App &app, CommonOptions &common) override
    {
        app.add_option("--post-map", m_postMap, "The post-map netlist: show what became of each net in the device")
            ->type_name("FILE");
        addNumber(app, "--details", m_limits.signals, 0,
                  "Take probe verdicts and chains for the first N nets and buses (default: 20000)");
        addDesignOptions(app, common);
        app.add_option("-o,--output", common.outputFile, "Write the page to FILE, which appears when it is whole")
            ->type_name("FILE")
            ->group("Output");
        addReportOptions(app, common);
    }

    std::vector<std::string> prepare(CommonOptions &common) override { return prepareForms(common, m_postMap); }

    int run(Session &session) override
    {
        if (session.output.isStandardOutput() && isatty(STDOUT_FILENO) == 1) {
            throw wrongUsage("html: a page is nothing for a terminal; -o FILE writes it to a file");
        }
        const UntilExit probed(std::make_unique<ProbedDesign>(m_design, m_postMap, session.reading()));
        session.stats.begin("page");
        PageOrigin origin;
        origin.version = NETLISTDB_VERSION;
        for (const std::string &file : m_design) {
            origin.command += (origin.command.empty() ? "" : " ") + quoted(file);
        }
        writePage(*probed, origin, m_limits, session.output, session.progress, session.interrupt);
        session.stats.end();
        return session.finish(true);
    }

  private:
    std::string m_postMap;
    PageDetailsLimits m_limits;
};

} // namespace

std::unique_ptr<Command> makeHtmlCommand()
{
    return std::make_unique<HtmlCommand>();
}

} // namespace kvr::netlistdb::tool
