#include "commands/Command.h"
#include "commands/KindOption.h"
#include "commands/Session.h"
#include "design/Design.h"
#include "design/NetClocks.h"
#include "design/PathResolver.h"
#include "design/SourceText.h"

#include <CLI/CLI.hpp>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

class ProbesCommand : public DesignCommand {
  public:
    const char *name() const override { return "probes"; }
    const char *summary() const override { return "Show every net that an on-chip debugger may probe"; }
    const char *more() const override
    {
        return "Shows the nets and buses that have a source position and are neither protected nor excluded, with the\n"
               "clock that drives them. The pins of black boxes are no nets of the design. A bus whose bits belong\n"
               "to several clock domains shows them all.\n\n"
               "Examples:\n"
               "  netlistdb probes soc.json\n"
               "  netlistdb probes soc.json --all --format csv -o probes.csv";
    }

    void addOptions(CLI::App &app, CommonOptions &common) override
    {
        app.add_flag("--all", m_all, "Show nets and buses without source position, too");
        app.add_option("--from", m_from, "Show what is in the instance PATH and below it only")->type_name("PATH");
        addKinds(app, m_kinds, "net,bus");
        DesignCommand::addOptions(app, common);
        addPathsOption(app, common);
    }

    int run(Session &session) override
    {
        const auto design = loadDesign(m_design, Clocks::Yes, session.reading());
        session.stats.begin("trace");
        VDBSearchParam param;
        param.startItem = &PathResolver(*design).startOf(m_from);
        param.itemTypes = ITEM_INSTANCE | ITEM_NET | ITEM_NET_BUS;
        param.userNetsOnly = !m_all;
        const auto writer = session.makeWriter();
        ResultHead head;
        head.command = "probes";
        head.facts = {{"top", design->top().getName()}, {"form", nameOf(design->form())}};
        head.columns = {{"kind", nullptr},
                        {"path", "PATH"},
                        {"width", "WIDTH", Look::Plain, true},
                        {"clocks", "CLOCK", Look::Name},
                        {nullptr, "SOURCE", Look::Dim},
                        {"user_declared", nullptr},
                        {"file", nullptr},
                        {"line", nullptr}};
        writer->begin(head);
        SearchResults results(design->database().search(param));
        const Interrupt::Action cancel(session.interrupt, [&results] { results.cancel(); });
        const Ending ending = walk(*design, results, *writer, session);
        session.stats.end();
        return session.finish(*writer, m_found, ending);
    }

  private:
    Ending walk(Design &design, SearchResults &results, ResultWriter &writer, Session &session)
    {
        while (!session.interrupt.requested() && results.next()) {
            IVDBItem &item = *results.getCurrent();
            if (item.getItemType() == ITEM_INSTANCE) {
                auto &instance = static_cast<IVDBInstance &>(item);
                m_inside = !design.isBlackBox(*instance.getModule());
                m_path = instance.getPath();
                m_path += m_path.empty() ? "" : "/";
            } else if (m_inside) {
                meet(design, static_cast<IVDBInstance &>(*results.getContext()), static_cast<IVDBNetBase &>(item),
                     writer);
            }
            writer.tick();
        }
        return session.interrupt.requested() ? Ending::Interrupted : Ending::Complete;
    }

    void meet(Design &design, IVDBInstance &instance, IVDBNetBase &net, ResultWriter &writer)
    {
        if (!net.isSelectableForDebugger() || !m_kinds.has(net.getItemType())) {
            return;
        }
        m_found = true;
        findClocks(design, instance, net, m_clocks);
        const std::string path = m_path + net.getName();
        const IVDBLineInfo *source = net.getLineInfo();
        const std::string shown = sourceText(source, m_directory);
        writer.row({std::string_view(net.getItemType() == ITEM_NET_BUS ? "bus" : "net"), std::string_view(path),
                    std::uint64_t(net.getWidth()), &m_clocks, std::string_view(shown), net.isUserDeclared(),
                    fileOf(source), lineOf(source)});
    }

    bool m_all = false;
    std::string m_from;
    Kinds m_kinds;
    bool m_found = false;
    bool m_inside = true; ///< of a module of the design
    std::string m_path;   ///< in front of the names of the nets that follow
    std::vector<std::string> m_clocks;
    std::string m_directory = workingDirectory();
};

} // namespace

std::unique_ptr<Command> makeProbesCommand()
{
    return std::make_unique<ProbesCommand>();
}

} // namespace kvr::netlistdb::tool
