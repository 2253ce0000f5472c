#include "commands/Command.h"
#include "commands/Session.h"
#include "design/Design.h"
#include "design/InstanceWalk.h"
#include "design/SourceText.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <netlistdb/netlistdb.h>
#include <unordered_map>
#include <unordered_set>

namespace kvr::netlistdb::tool {

namespace {

class ClocksCommand : public DesignCommand {
  public:
    const char *name() const override { return "clocks"; }
    const char *summary() const override { return "Show every clock with the number of nets it drives"; }
    const char *more() const override
    {
        return "A net, counted bit by bit in every instance, belongs to the clock that `clock-of` shows for it. "
               "The\n"
               "pins of black boxes are no nets of the design.\n\n"
               "Examples:\n"
               "  netlistdb clocks soc.json\n"
               "  netlistdb clocks soc.json --format csv -o clocks.csv";
    }

    int run(Session &session) override
    {
        const auto design = loadDesign(m_design, Clocks::Yes, session.reading());
        const std::vector<Clock> &clocks = design->clocks().clocks();
        session.progress.begin("tracing nets");
        session.stats.begin("trace");
        countNets(*design, session.progress);
        const auto writer = session.makeWriter();
        ResultHead head;
        head.command = "clocks";
        head.facts = {{"top", design->nameOf(design->top())}, {"form", nameOf(design->form())}};
        head.columns = {{"nets", "NETS", Look::Plain, true},
                        {"clock", "CLOCK", Look::Name},
                        {nullptr, "SOURCE", Look::Dim},
                        {nullptr, "ALSO"},
                        {"aliases", nullptr},
                        {"instance", nullptr},
                        {"file", nullptr},
                        {"line", nullptr}};
        session.progress.clear();
        writer->begin(head);
        const std::string directory = workingDirectory();
        for (const Clock &clock : clocks) {
            const IVDBLineInfo *source = clock.nets.front().net->getLineInfo();
            const std::string shown = sourceText(source, directory);
            const std::string instance = clock.nets.front().instance->getPath();
            const std::vector<std::string> aliases = aliasesOf(*design, clock);
            const std::string also = beginningOf(aliases);
            writer->row({m_nets[&clock], std::string_view(clock.name), std::string_view(shown), std::string_view(also),
                         &aliases, std::string_view(instance), fileOf(source), lineOf(source)});
        }
        session.stats.end();
        const int exitCode = session.finish(*writer, !clocks.empty(), Ending::Complete,
                                            {{"nets", m_total}, {"nets_without_clock", m_nets[nullptr]}});
        if (writer->isTable()) {
            session.note(fmt::format("{} of {} nets are driven by no clock", m_nets[nullptr], m_total));
        }
        return exitCode;
    }

  private:
    /// What else the nets of @p clock are called, each name once.
    static std::vector<std::string> aliasesOf(Design &design, const Clock &clock)
    {
        std::vector<std::string> aliases;
        std::unordered_set<std::string> seen = {clock.name};
        const auto add = [&](const std::string &name) {
            if (seen.insert(name).second) {
                aliases.push_back(name);
            }
        };
        for (const ClockNet &each : clock.nets) {
            add(each.fullName());
        }
        for (const ClockNet &each : clock.nets) {
            const std::string path = each.instance->getPath();
            for (const std::string &name : design.names(*each.instance->getModule()).aliasesOf(*each.net)) {
                add(path.empty() ? name : path + "/" + name);
            }
        }
        return aliases;
    }

    /// The first few of @p names, for a table.
    static std::string beginningOf(const std::vector<std::string> &names)
    {
        constexpr std::size_t MOST = 3;
        const auto end = names.begin() + static_cast<std::ptrdiff_t>(std::min(names.size(), MOST));
        std::string text = fmt::format("{}", fmt::join(names.begin(), end, " "));
        return names.size() > MOST ? text + fmt::format(" and {} more", names.size() - MOST) : text;
    }

    /// The nets of a module, none for a black box. Lives as long as the command.
    const std::vector<IVDBNet *> &netsOf(Design &design, IVDBNetlist *module)
    {
        const auto [nets, isNew] = m_netsOfModules.try_emplace(module);
        if (isNew && !design.isBlackBox(*module)) {
            nets->second = module->getNets(true);
            const std::vector<IVDBNet *> others = module->getNets(false);
            nets->second.insert(nets->second.end(), others.begin(), others.end());
        }
        return nets->second;
    }

    void countNets(Design &design, Progress &progress)
    {
        std::uint64_t all = 0;
        for (InstanceWalk walk(design.root()); walk.instance() != nullptr; walk.next()) {
            all += netsOf(design, walk.instance()->getModule()).size();
        }
        for (InstanceWalk walk(design.root()); walk.instance() != nullptr; walk.next()) {
            for (IVDBNet *net : netsOf(design, walk.instance()->getModule())) {
                ++m_nets[design.clockOf(*walk.instance(), *net)];
                if (++m_total % 1024 == 0) {
                    progress.update(m_total, all);
                }
            }
        }
    }

    std::unordered_map<IVDBNetlist *, std::vector<IVDBNet *>> m_netsOfModules;
    std::unordered_map<const Clock *, std::uint64_t> m_nets;
    std::uint64_t m_total = 0;
};

} // namespace

std::unique_ptr<Command> makeClocksCommand()
{
    return std::make_unique<ClocksCommand>();
}

} // namespace kvr::netlistdb::tool
