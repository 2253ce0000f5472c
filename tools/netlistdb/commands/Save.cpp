#include "base/Failure.h"
#include "commands/Command.h"
#include "commands/Session.h"
#include "design/Design.h"

#include <CLI/CLI.hpp>
#include <DataBase.h>
#include <cerrno>
#include <cstring>

namespace kvr::netlistdb::tool {

namespace {

class SaveCommand : public DesignCommand {
  public:
    const char *name() const override { return "save"; }
    const char *summary() const override { return "Write the saved-netlist form, which is quick to read"; }
    const char *arguments() const override { return "DESIGN... OUT [OPTIONS]"; }
    const char *more() const override
    {
        return "OUT is replaced only by a whole netlist.\n\n"
               "Examples:\n"
               "  netlistdb save soc.json soc.netlist\n"
               "  netlistdb save rtl/soc.v rtl/uart.v soc.netlist --top soc";
    }

    void addOptions(CLI::App &app, CommonOptions &common) override
    {
        app.add_option("--top", common.top, "Top module (default: the one marked as top, or that none instantiates)")
            ->type_name("NAME")
            ->group("Design");
        addReportOptions(app, common);
    }

    int run(Session &session) override
    {
        const SourceNetlist source = readNetlist(m_design, session.reading());
        const std::string &file = m_own.front();
        session.progress.begin("saving " + file);
        session.stats.begin("save");
        errno = 0;
        if (source.netlist->SaveToFile(file.c_str()) == 0) {
            throw refused(file,
                          errno != 0 ? std::string("cannot be written: ") + std::strerror(errno) : "cannot be written");
        }
        Verific::Libset::Reset();
        return session.finish(true);
    }

  protected:
    std::size_t leastOwnArguments() const override { return 1; }
};

} // namespace

std::unique_ptr<Command> makeSaveCommand()
{
    return std::make_unique<SaveCommand>();
}

} // namespace kvr::netlistdb::tool
