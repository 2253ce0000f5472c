#include "base/Failure.h"
#include "base/UntilExit.h"
#include "commands/Command.h"
#include "commands/Session.h"
#include "design/ClockChains.h"
#include "design/Design.h"
#include "design/NetClockRows.h"
#include "design/PathResolver.h"
#include "design/SourceText.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <iostream>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

struct Path {
    std::string text;
    bool fromList; ///< of standard input
};

/// @p arguments, with what standard input holds, line by line, in the place of "-".
std::vector<Path> pathsOf(const std::vector<std::string> &arguments)
{
    std::vector<Path> paths;
    for (const std::string &argument : arguments) {
        if (argument != "-") {
            paths.push_back({argument, false});
            continue;
        }
        for (std::string line; std::getline(std::cin, line);) {
            if (!line.empty()) {
                paths.push_back({line, true});
            }
        }
    }
    return paths;
}

class ClockOfCommand : public DesignCommand {
  public:
    const char *name() const override { return "clock-of"; }
    const char *summary() const override { return "Show every clock that reaches each net"; }
    const char *arguments() const override { return "DESIGN... PATH... [OPTIONS]"; }
    const char *more() const override
    {
        return "PATH is any of the full names of a net, or of a bus, which stands for each of its bits; `-` reads "
               "paths\n"
               "from standard input, one a line. The clocks of a net are those whose registers reach it through "
               "logic,\n"
               "buffers, pads and hierarchy, the one with the fewest cells in between first. ALSO tells what else\n"
               "reaches it. Nothing is shown when one of the paths does not exist.\n\n"
               "Examples:\n"
               "  netlistdb clock-of soc.json u_uart/tx_shift_q 'u_uart/count_q[3]'\n"
               "  netlistdb clock-of soc.json irq --why\n"
               "  netlistdb search soc.json fifo --paths | netlistdb clock-of soc.json -";
    }

    void addOptions(CLI::App &app, CommonOptions &common) override
    {
        CLI::Option *why = app.add_flag("--why", m_choice.why, "Show for each clock the shortest chain that proves it");
        CLI::Option *capture =
            app.add_flag("--capture", m_choice.capture, "Show the clocks whose registers the net reaches, too");
        app.add_flag("--first", m_first,
                     "Show the clock domain that the library's trace finds: that of the first register met")
            ->excludes(why)
            ->excludes(capture);
        DesignCommand::addOptions(app, common);
    }

    std::vector<std::string> prepare(CommonOptions &common) override
    {
        const auto reads = [](const std::vector<std::string> &names) {
            return std::find(names.begin(), names.end(), "-") != names.end();
        };
        if (reads(m_design) && reads(m_own)) {
            throw wrongUsage("clock-of: '-' is the design; it cannot give the paths, too");
        }
        return DesignCommand::prepare(common);
    }

    int run(Session &session) override
    {
        const std::vector<Path> paths = pathsOf(m_own);
        const UntilExit design(loadDesign(m_design, Clocks::Yes, session.reading()));
        session.stats.begin("trace");
        PathResolver resolver(*design);
        std::vector<PathResolver::Bit> bits;
        std::size_t instances = 0;
        for (const auto &[path, fromList] : paths) {
            // A list of everything that a search found has instances among the nets.
            if (fromList && resolver.isInstanceOnly(path)) {
                ++instances;
                continue;
            }
            const std::vector<PathResolver::Bit> found = resolver.nets(path);
            bits.insert(bits.end(), found.begin(), found.end());
        }
        const auto writer = session.makeWriter();
        ResultHead head;
        head.command = "clock-of";
        head.facts = {{"top", design->nameOf(design->top())}, {"form", nameOf(design->form())}};
        if (m_choice.why && writer->isTable()) {
            writePictures(*design, bits, session);
        } else if (m_first) {
            head.columns = {{"net", "NET"}, {"clock", "CLOCK", Look::Name}};
            writer->begin(head);
            writeFirst(*design, bits, *writer);
        } else {
            NetClockRows rows(*design, bits, m_choice);
            head.columns = rows.columns();
            writer->begin(head);
            while (rows.step(*writer)) {
                writer->tick();
            }
            m_found = rows.found() > 0;
        }
        session.stats.end();
        const int exitCode = m_choice.why && writer->isTable() ? session.finish(m_found)
                                                               : session.finish(*writer, m_found, Ending::Complete);
        if (instances > 0) {
            session.note(
                fmt::format("{} of {} paths are instances, which have no clock: left out", instances, paths.size()));
        }
        return exitCode;
    }

  protected:
    std::size_t leastOwnArguments() const override { return 1; }
    std::size_t mostOwnArguments() const override { return SIZE_MAX / 2; }

  private:
    void writeFirst(Design &design, const std::vector<PathResolver::Bit> &bits, ResultWriter &writer)
    {
        std::vector<const IClockDomain *> domains(bits.size());
        // A database remembers what its traces met. Those that start on a pin of a black box meet nets of the design,
        // but may find no clock for them: they come last, so that they spoil no other result.
        for (const bool onBlackBoxes : {false, true}) {
            for (std::size_t at = 0; at < bits.size(); ++at) {
                const auto &[instance, net, name] = bits[at];
                if (net != nullptr && design.isBlackBox(*instance->getModule()) == onBlackBoxes) {
                    domains[at] = design.firstClockOf(*instance, *net);
                }
            }
        }
        const Value none = writer.isTable() ? Value(std::string_view("(none)")) : Value();
        for (std::size_t at = 0; at < bits.size(); ++at) {
            m_found = m_found || domains[at] != nullptr;
            const std::string path = shownPath(bits[at], writer.isTable());
            writer.row({std::string_view(path),
                        domains[at] != nullptr ? Value(std::string_view(domains[at]->getName())) : none});
        }
    }

    void writePictures(Design &design, const std::vector<PathResolver::Bit> &bits, Session &session)
    {
        const analysis::ClockMap &map = design.clocks();
        const std::string directory = workingDirectory();
        for (const PathResolver::Bit &bit : bits) {
            session.output.write(shownPath(bit, true) + "\n");
            if (bit.net == nullptr) {
                session.output.write("  constant\n");
                continue;
            }
            const analysis::LaunchProof proof = map.why(bit.instance, bit.net);
            m_found = m_found || !proof.clocks.empty();
            session.output.write(pictureOf(proof, map, directory));
            if (m_choice.capture) {
                session.output.write("  captured by: " + capturedOf(map.capture(bit.instance, bit.net), map).shown +
                                     "\n");
            }
        }
    }

    NetClockChoice m_choice;
    bool m_first = false;
    bool m_found = false;
};

} // namespace

std::unique_ptr<Command> makeClockOfCommand()
{
    return std::make_unique<ClockOfCommand>();
}

} // namespace kvr::netlistdb::tool
