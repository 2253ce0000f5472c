#include "base/NumberOption.h"
#include "commands/Command.h"
#include "commands/Session.h"
#include "design/Design.h"
#include "design/InstanceWalk.h"
#include "design/PathResolver.h"
#include "design/TreeDrawing.h"

#include <CLI/CLI.hpp>
#include <netlistdb/netlistdb.h>
#include <unordered_map>

namespace kvr::netlistdb::tool {

namespace {

/// Name of an instance as the tree of a table draws it.
std::string drawn(const InstanceWalk &walk, const std::string &name)
{
    std::vector<bool> isLast;
    for (std::size_t level = 1; level <= walk.depth(); ++level) {
        isLast.push_back(walk.isLast(level));
    }
    return treeDrawing(isLast) + name;
}

/// Names of the nets that begin a clock, by the instance they lie in.
using ClocksByInstance = std::unordered_map<const IVDBInstance *, std::vector<std::string>>;

ClocksByInstance clocksByInstance(const analysis::ClockMap &map)
{
    ClocksByInstance clocks;
    for (const analysis::Clock &clock : map.clocks()) {
        if (clock.instance != nullptr && clock.net != nullptr) {
            clocks[clock.instance].push_back(clock.net->getName());
        }
    }
    return clocks;
}

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
        addNumber(app, "--depth", m_depth, 0, "Show at most N levels below the top");
        app.add_flag("--clocks", m_clocks, "Show the clocks that begin in each instance");
        app.add_flag("--user-modules", m_userModules, "Leave out instances of modules without source position");
        app.add_option("--from", m_from, "Show the instance PATH and what is below it")->type_name("PATH");
        DesignCommand::addOptions(app, common);
        addPathsOption(app, common);
    }

    int run(Session &session) override
    {
        const auto design = loadDesign(m_design, m_clocks ? Clocks::Yes : Clocks::No, session.reading());
        session.stats.begin("show");
        ResultHead head;
        head.command = "tree";
        head.facts = {{"top", design->nameOf(design->top())}, {"form", nameOf(design->form())}};
        head.columns = {{"depth", nullptr},
                        {nullptr, "INSTANCE"},
                        {"path", nullptr},
                        {"name", nullptr},
                        {"module", nullptr},
                        {"user_module", "MODULE", Look::Name},
                        {"library", "LIBRARY", Look::Dim},
                        {"user_declared", nullptr},
                        {"file", nullptr},
                        {"line", nullptr},
                        {"sources", nullptr}};
        if (m_clocks) {
            head.columns.push_back({"clocks", "CLOCKS"});
            m_clocksOf = clocksByInstance(design->clocks());
        }
        const auto writer = session.makeWriter();
        writer->begin(head);
        const Interrupt::Action partial(session.interrupt);
        const Ending ending = show(*design, *writer, session);
        session.stats.end();
        return session.finish(*writer, true, ending);
    }

  private:
    Ending show(Design &design, ResultWriter &writer, Session &session)
    {
        static const std::vector<std::string> NONE;
        InstanceWalk walk(PathResolver(design).startOf(m_from), m_userModules);
        while (walk.instance() != nullptr) {
            if (session.interrupt.requested()) {
                return Ending::Interrupted;
            }
            IVDBInstance &instance = *walk.instance();
            IVDBNetlist &module = *instance.getModule();
            const std::string &shown = walk.path().empty() ? design.nameOf(module)
                                       : walk.depth() == 0 ? walk.path()
                                                           : instance.getName();
            const std::string drawing = writer.isTable() ? drawn(walk, shown) : std::string();
            const ItemFacts facts = writer.isTable() ? ItemFacts() : design.factsOf(instance);
            Row row = {std::uint64_t(walk.depth()),
                       std::string_view(drawing),
                       std::string_view(walk.path()),
                       std::string_view(instance.getName()),
                       std::string_view(module.getName()),
                       std::string_view(design.nameOf(module)),
                       std::string_view(module.GetLibName()),
                       module.isUserDeclared(),
                       facts.fileValue(),
                       facts.lineValue(),
                       &facts.sources};
            if (m_clocks) {
                const auto found = m_clocksOf.find(&instance);
                row.emplace_back(found != m_clocksOf.end() ? &found->second : &NONE);
            }
            writer.row(row);
            if (walk.depth() < m_depth) {
                walk.next();
            } else {
                walk.skip();
            }
        }
        return Ending::Complete;
    }

    std::uint64_t m_depth = UINT64_MAX;
    bool m_clocks = false;
    bool m_userModules = false;
    std::string m_from;
    ClocksByInstance m_clocksOf;
};

} // namespace

std::unique_ptr<Command> makeTreeCommand()
{
    return std::make_unique<TreeCommand>();
}

} // namespace kvr::netlistdb::tool
