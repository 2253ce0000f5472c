#include "base/Interrupt.h"
#include "commands/Command.h"
#include "commands/KindOption.h"
#include "commands/Session.h"
#include "design/Design.h"
#include "design/NetClocks.h"
#include "design/PathResolver.h"
#include "design/ProbeList.h"
#include "design/SourceText.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <deque>
#include <netlistdb/netlistdb.h>
#include <unordered_map>

namespace kvr::netlistdb::tool {

namespace {

class ProbesCommand : public DesignCommand {
  public:
    const char *name() const override { return "probes"; }
    const char *summary() const override { return "Show every net that an on-chip debugger may probe"; }
    const char *more() const override
    {
        return "Shows the nets and vectors that the user declared and that are neither protected nor excluded, with "
               "the\n"
               "clock that drives them. A vector is shown whole, also when some of its bits have other names.\n"
               "The pins of black boxes are no nets of the design. A bus whose bits belong to several clock domains\n"
               "shows them all.\n\n"
               "Examples:\n"
               "  netlistdb probes soc.json\n"
               "  netlistdb probes soc.json --all --format csv -o probes.csv";
    }

    void addOptions(CLI::App &app, CommonOptions &common) override
    {
        app.add_flag("--all", m_all, "Show nets and buses that no user declared, too");
        app.add_option("--from", m_from, "Show what is in the instance PATH and below it only")->type_name("PATH");
        addKinds(app, m_kinds, "net,bus");
        DesignCommand::addOptions(app, common);
        addPathsOption(app, common);
    }

    int run(Session &session) override
    {
        const auto design = loadDesign(m_design, Clocks::Yes, session.reading());
        session.stats.begin("trace");
        IVDBInstance &start = PathResolver(*design).startOf(m_from);
        const auto writer = session.makeWriter();
        ResultHead head;
        head.command = "probes";
        head.facts = {{"top", design->nameOf(design->top())}, {"form", nameOf(design->form())}};
        head.columns = {{"kind", nullptr},
                        {"path", "PATH"},
                        {"width", "WIDTH", Look::Plain, true},
                        {"clocks", "CLOCK", Look::Name},
                        {nullptr, "SOURCE", Look::Dim},
                        {"user_declared", nullptr},
                        {"file", nullptr},
                        {"line", nullptr},
                        {"aliases", nullptr},
                        {"sources", nullptr}};
        writer->begin(head);
        const Ending ending = walk(*design, start, *writer, session);
        session.stats.end();
        return session.finish(*writer, m_found, ending);
    }

  private:
    /// Level by level, as a search goes.
    Ending walk(Design &design, IVDBInstance &start, ResultWriter &writer, Session &session)
    {
        const Interrupt::Action stop(session.interrupt);
        std::deque<IVDBInstance *> waiting = {&start};
        for (; !waiting.empty(); waiting.pop_front()) {
            IVDBInstance &instance = *waiting.front();
            const std::vector<IVDBInstance *> &children = instance.getSubInstances();
            waiting.insert(waiting.end(), children.begin(), children.end());
            const std::vector<Probe> &probes = probesOf(design, *instance.getModule());
            if (probes.empty()) {
                continue;
            }
            std::string path = instance.getPath();
            path += path.empty() ? "" : "/";
            for (const Probe &probe : probes) {
                if (session.interrupt.requested()) {
                    return Ending::Interrupted;
                }
                write(design, instance, path, probe, writer);
                writer.tick();
            }
        }
        return session.interrupt.requested() ? Ending::Interrupted : Ending::Complete;
    }

    /// What of @p module is to be shown. Lives as long as the command.
    const std::vector<Probe> &probesOf(Design &design, IVDBNetlist &module)
    {
        const auto [probes, isNew] = m_probes.try_emplace(&module);
        if (isNew && !design.isBlackBox(module)) {
            probes->second = tool::probesOf(design, module);
            const auto end = std::remove_if(probes->second.begin(), probes->second.end(), [&](const Probe &probe) {
                return !(m_all || probe.declared) || !m_kinds.has(probe.isBus ? ITEM_NET_BUS : ITEM_NET);
            });
            probes->second.erase(end, probes->second.end());
        }
        return probes->second;
    }

    void write(Design &design, IVDBInstance &instance, const std::string &prefix, const Probe &probe,
               ResultWriter &writer)
    {
        m_found = true;
        findClocks(design, instance, probe.bits, m_clocks);
        const std::string path = prefix + probe.name;
        const std::string shown = sourceText(probe.source, m_directory);
        std::vector<std::string> aliases = probe.aliases;
        for (std::string &alias : aliases) {
            alias.insert(0, prefix);
        }
        writer.row({std::string_view(probe.isBus ? "bus" : "net"), std::string_view(path), probe.width, &m_clocks,
                    std::string_view(shown), probe.declared, fileOf(probe.source), lineOf(probe.source), &aliases,
                    &probe.sources});
    }

    bool m_all = false;
    std::string m_from;
    Kinds m_kinds;
    bool m_found = false;
    std::unordered_map<const IVDBNetlist *, std::vector<Probe>> m_probes;
    std::vector<std::string> m_clocks;
    std::string m_directory = workingDirectory();
};

} // namespace

std::unique_ptr<Command> makeProbesCommand()
{
    return std::make_unique<ProbesCommand>();
}

} // namespace kvr::netlistdb::tool
