#include "base/NumberOption.h"
#include "base/UntilExit.h"
#include "commands/Command.h"
#include "commands/Session.h"
#include "design/Design.h"
#include "design/PathResolver.h"
#include "design/TreeWalk.h"

#include <CLI/CLI.hpp>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

class TreeCommand : public DesignCommand {
  public:
    const char *name() const override { return "tree"; }
    const char *summary() const override { return "Show the instance tree"; }
    const char *more() const override
    {
        return "Examples:\n"
               "  netlistdb tree soc.json --depth 2\n"
               "  netlistdb tree soc.json --user-modules --clocks\n"
               "  netlistdb tree soc.json --format jsonl | jq -r 'select(.depth == 1).path'";
    }

    void addOptions(CLI::App &app, CommonOptions &common) override
    {
        addNumber(app, "--depth", m_choice.depth, 0, "Show at most N levels below the top");
        app.add_flag("--clocks", m_choice.clocks, "Show the clocks that begin in each instance");
        app.add_flag("--user-modules", m_choice.userModules, "Leave out instances of modules without source position");
        app.add_option("--from", m_from, "Show the instance PATH and what is below it")->type_name("PATH");
        DesignCommand::addOptions(app, common);
        addPathsOption(app, common);
    }

    int run(Session &session) override
    {
        const UntilExit design(loadDesign(m_design, m_choice.clocks ? Clocks::Yes : Clocks::No, session.reading()));
        session.stats.begin("show");
        ResultHead head;
        head.command = "tree";
        head.facts = {{"top", design->nameOf(design->top())}, {"form", nameOf(design->form())}};
        TreeWalk walk(*design, PathResolver(*design).startOf(m_from), m_choice);
        head.columns = walk.columns();
        const auto writer = session.makeWriter();
        writer->begin(head);
        const Interrupt::Action partial(session.interrupt);
        while (!session.interrupt.requested() && walk.step(*writer)) {
        }
        session.stats.end();
        return session.finish(*writer, true, session.interrupt.requested() ? Ending::Interrupted : Ending::Complete);
    }

  private:
    std::string m_from;
    TreeChoice m_choice;
};

} // namespace

std::unique_ptr<Command> makeTreeCommand()
{
    return std::make_unique<TreeCommand>();
}

} // namespace kvr::netlistdb::tool
