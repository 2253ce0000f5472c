#include "commands/Command.h"
#include "commands/Session.h"
#include "design/ClockOrder.h"
#include "design/Design.h"
#include "design/InstanceWalk.h"
#include "design/SourceText.h"

#include <fmt/format.h>
#include <netlistdb/netlistdb.h>
#include <unordered_map>

namespace kvr::netlistdb::tool {

namespace {

class ClocksCommand : public DesignCommand {
  public:
    const char *name() const override { return "clocks"; }
    const char *summary() const override { return "Show every clock domain with the number of nets it drives"; }
    const char *more() const override
    {
        return "A net, counted bit by bit in every instance, belongs to the domain that `clock-of` answers for it. "
               "The\n"
               "pins of black boxes are no nets of the design.\n\n"
               "Examples:\n"
               "  netlistdb clocks soc.json\n"
               "  netlistdb clocks soc.json --format csv -o clocks.csv";
    }

    int run(Session &session) override
    {
        const auto design = loadDesign(m_design, Clocks::Yes, session.reading());
        const std::vector<IClockDomain *> domains = clocksInOrder(*design);
        session.progress.begin("tracing nets");
        session.stats.begin("trace");
        countNets(*design, session.progress);
        const auto writer = session.makeWriter();
        ResultHead head;
        head.command = "clocks";
        head.facts = {{"top", design->top().getName()}, {"form", nameOf(design->form())}};
        head.columns = {{"nets", "NETS", Look::Plain, true},
                        {"clock", "CLOCK", Look::Name},
                        {nullptr, "SOURCE"},
                        {"instance", nullptr},
                        {"file", nullptr},
                        {"line", nullptr}};
        session.progress.clear();
        writer->begin(head);
        const std::string directory = workingDirectory();
        for (const IClockDomain *domain : domains) {
            const IVDBLineInfo *source = domain->getNet()->getLineInfo();
            const std::string shown = sourceText(source, directory);
            const std::string instance = domain->getInstance()->getPath();
            writer->row({m_nets[domain], std::string_view(domain->getName()), std::string_view(shown),
                         std::string_view(instance), fileOf(source), lineOf(source)});
        }
        session.stats.end();
        const int exitCode = session.finish(*writer, !domains.empty(), Ending::Complete,
                                            {{"nets", m_total}, {"nets_without_clock", m_nets[nullptr]}});
        if (writer->isTable()) {
            session.note(fmt::format("{} of {} nets are driven by no clock", m_nets[nullptr], m_total));
        }
        return exitCode;
    }

  private:
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
    std::unordered_map<const IClockDomain *, std::uint64_t> m_nets;
    std::uint64_t m_total = 0;
};

} // namespace

std::unique_ptr<Command> makeClocksCommand()
{
    return std::make_unique<ClocksCommand>();
}

} // namespace kvr::netlistdb::tool
