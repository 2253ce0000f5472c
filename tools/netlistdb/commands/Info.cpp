#include "base/UntilExit.h"
#include "commands/Command.h"
#include "commands/Session.h"
#include "design/Design.h"
#include "design/InfoReport.h"

#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

class InfoCommand : public DesignCommand {
  public:
    const char *name() const override { return "info"; }
    const char *summary() const override { return "Show what the design holds"; }
    const char *more() const override
    {
        return "Nets and ports are counted bit by bit. The result does not depend on the file: a design gives the "
               "same\n"
               "one from every file that holds it.\n\n"
               "Examples:\n"
               "  netlistdb info soc.json\n"
               "  netlistdb info rtl/soc.v rtl/uart.v --top soc\n"
               "  netlistdb info soc.netlist --format json | jq .clock_domains";
    }

    int run(Session &session) override
    {
        const UntilExit design(loadDesign(m_design, Clocks::Yes, session.reading()));
        session.stats.begin("count");
        const Census census = takeCensus(*design, session.interrupt);
        const InfoReport report{design->nameOf(design->top()), design->form(), design->devices(), census,
                                design->clockCount()};
        report.write(session.options.format, session.output, session.color);
        session.stats.end();
        return session.finish(true);
    }
};

} // namespace

std::unique_ptr<Command> makeInfoCommand()
{
    return std::make_unique<InfoCommand>();
}

} // namespace kvr::netlistdb::tool
