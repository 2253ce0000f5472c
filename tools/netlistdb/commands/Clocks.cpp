#include "base/UntilExit.h"
#include "commands/Command.h"
#include "commands/Session.h"
#include "design/ClockRows.h"
#include "design/Design.h"

#include <fmt/format.h>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

class ClocksCommand : public DesignCommand {
  public:
    const char *name() const override { return "clocks"; }
    const char *summary() const override { return "Show the clock tree with the registers and nets of each clock"; }
    const char *more() const override
    {
        return "A clock begins at a port, a black box, a register (a divided clock), logic (a gated or multiplexed\n"
               "clock), and goes through buffers, pads, inverters and hierarchy; what it is called elsewhere stands\n"
               "under ALSO. Below a clock stand those that are made from it. NETS counts the nets that its registers\n"
               "reach, bit by bit in every instance; a net that several clocks reach counts for each of them.\n\n"
               "Examples:\n"
               "  netlistdb clocks soc.json\n"
               "  netlistdb clocks soc.json --format csv -o clocks.csv";
    }

    int run(Session &session) override
    {
        const UntilExit design(loadDesign(m_design, Clocks::Yes, session.reading()));
        session.progress.begin("tracing clocks");
        session.stats.begin("trace");
        const analysis::ClockMap &map = design->clocks();
        const analysis::NetCounts counts = map.countNets();
        const auto writer = session.makeWriter();
        ResultHead head;
        head.command = "clocks";
        head.facts = {{"top", design->nameOf(design->top())}, {"form", nameOf(design->form())}};
        ClockRows rows(*design, counts);
        head.columns = rows.columns();
        session.progress.clear();
        writer->begin(head);
        while (rows.step(*writer)) {
        }
        session.stats.end();
        const int exitCode = session.finish(*writer, !map.clocks().empty(), Ending::Complete,
                                            {{"nets", counts.nets}, {"nets_without_clock", counts.withoutClock}});
        if (writer->isTable()) {
            session.note(fmt::format("{} of {} nets are reached by no clock", counts.withoutClock, counts.nets));
        }
        return exitCode;
    }
};

} // namespace

std::unique_ptr<Command> makeClocksCommand()
{
    return std::make_unique<ClocksCommand>();
}

} // namespace kvr::netlistdb::tool
