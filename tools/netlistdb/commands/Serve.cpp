#include "base/Failure.h"
#include "base/Interrupt.h"
#include "commands/Command.h"
#include "commands/ServedSources.h"
#include "commands/Session.h"
#include "serve/LineReader.h"
#include "serve/Server.h"

#include <CLI/CLI.hpp>
#include <unistd.h>

namespace kvr::netlistdb::tool {

namespace {

/// Requests are short; nothing that is longer is one.
constexpr std::size_t LONGEST_LINE = std::size_t(1) << 20U;

class ServeCommand : public Command {
  public:
    const char *name() const override { return "serve"; }
    const char *summary() const override { return "Answer an assistant, an editor or a page over a pipe"; }
    const char *arguments() const override { return "DESIGN... [OPTIONS]"; }
    const char *more() const override
    {
        return "Speaks the Model Context Protocol on standard input and output, until its input ends. docs/serve.md\n"
               "shows how to connect a client. A DESIGN given as NAME=FILE is served under NAME, others under the\n"
               "name of their file without what follows the dot; Verilog sources in a row are one design. Questions\n"
               "wait until the designs are read.\n\n"
               "Examples:\n"
               "  netlistdb serve soc.json\n"
               "  netlistdb serve soc_rtl.json --post-map soc_mapped.json\n"
               "  netlistdb serve left=a/top.json right=b/top.json --post-map left=a/mapped.json";
    }

    void addOptions(CLI::App &app, CommonOptions &common) override
    {
        app.add_option("--post-map", m_postMaps,
                       "The post-map netlist of the design whose RTL is given; NAME=FILE of the design NAME")
            ->type_name("FILE")
            ->allow_extra_args(false);
        app.add_option("--waivers", m_waivers, "Read clock groups and waivers of crossings from FILE")
            ->type_name("FILE");
        addDesignOptions(app, common);
        addReportOptions(app, common);
    }

    void takeArguments(std::vector<std::string> arguments, const CommonOptions &common) override
    {
        if (arguments.empty() && common.verilog.fileLists.empty()) {
            throw wrongUsage(std::string("no design given; usage: netlistdb serve ") + this->arguments());
        }
        m_arguments = std::move(arguments);
    }

    std::vector<std::string> prepare(CommonOptions &common) override
    {
        m_sources = servedSources(m_arguments, m_postMaps, m_waivers, common);
        return {};
    }

    int run(Session &session) override
    {
        std::vector<ServedDesign> designs;
        for (ServedSource &source : m_sources) {
            designs.emplace_back(std::move(source));
        }
        ToolBox tools(designs);
        MessageWriter writer(STDOUT_FILENO);
        Worker worker([&] { load(designs, worker, session); });
        Server server(tools, writer, worker, NETLISTDB_VERSION);
        LineReader reader(STDIN_FILENO, worker.failed(), LONGEST_LINE);
        try {
            const bool isAtEnd = serve(server, reader);
            if (isAtEnd && !worker.drain()) {
                leave(session);
            }
        } catch (const OutputClosed &) {
            leave(session);
        }
        worker.finish();
        session.progress.clear();
        return EXIT_FOUND;
    }

  private:
    /// Returns false when the worker has failed.
    static bool serve(Server &server, LineReader &reader)
    {
        for (std::string line;;) {
            switch (reader.next(line)) {
            case LineReader::Kind::Line:
                server.receive(line);
                break;
            case LineReader::Kind::TooLong:
                server.refuseLine(LONGEST_LINE);
                break;
            case LineReader::Kind::End:
                return true;
            case LineReader::Kind::Stopped:
                return false;
            }
        }
    }

    /// Ends the process, whatever the worker is in the middle of: nobody waits for it.
    [[noreturn]] static void leave(Session &session)
    {
        session.interrupt.temporaries().removeForGood();
        _exit(EXIT_FOUND);
    }

    static void load(std::vector<ServedDesign> &designs, Worker &worker, Session &session)
    {
        for (ServedDesign &design : designs) {
            design.load(session.reading());
        }
        session.stats.end();
        session.progress.clear();
        for (ServedDesign &design : designs) {
            for (std::function<void()> &step : design.preparations()) {
                worker.prepare(std::move(step));
            }
        }
    }

    std::vector<std::string> m_arguments;
    std::vector<std::string> m_postMaps;
    std::string m_waivers;
    std::vector<ServedSource> m_sources;
};

} // namespace

std::unique_ptr<Command> makeServeCommand()
{
    return std::make_unique<ServeCommand>();
}

} // namespace kvr::netlistdb::tool
