#include "base/Failure.h"
#include "commands/Command.h"
#include "commands/Session.h"
#include "design/Design.h"
#include "design/PathResolver.h"

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
    const char *summary() const override { return "Show the clock domain that drives each net"; }
    const char *arguments() const override { return "DESIGN... PATH... [OPTIONS]"; }
    const char *more() const override
    {
        return "PATH is any of the full names of a net, or of a bus, which gives a row for each of its bits; `-` reads "
               "paths from\n"
               "standard input, one a line. The clock domain of a net is the clock of the first register that is\n"
               "met on the way back from it. Nothing is shown when one of the paths does not exist.\n\n"
               "Examples:\n"
               "  netlistdb clock-of soc.json u_uart/tx_shift_q 'u_uart/count_q[3]'\n"
               "  netlistdb search soc.json fifo --paths | netlistdb clock-of soc.json -";
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
        const auto design = loadDesign(m_design, Clocks::Yes, session.reading());
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
        const std::vector<const Clock *> clocks = trace(*design, bits);
        const auto writer = session.makeWriter();
        ResultHead head;
        head.command = "clock-of";
        head.facts = {{"top", design->nameOf(design->top())}, {"form", nameOf(design->form())}};
        head.columns = {{"net", "NET"}, {"clock", "CLOCK", Look::Name}};
        writer->begin(head);
        for (std::size_t at = 0; at < bits.size(); ++at) {
            write(*writer, bits[at], clocks[at]);
        }
        session.stats.end();
        const int exitCode = session.finish(*writer, m_found, Ending::Complete);
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
    static std::vector<const Clock *> trace(Design &design, const std::vector<PathResolver::Bit> &bits)
    {
        std::vector<const Clock *> clocks(bits.size());
        // A database remembers what its traces met. Those that start on a pin of a black box meet nets of the design,
        // but may find no clock for them: they come last, so that they spoil no other result.
        for (const bool onBlackBoxes : {false, true}) {
            for (std::size_t at = 0; at < bits.size(); ++at) {
                const auto &[instance, net, name] = bits[at];
                if (net != nullptr && design.isBlackBox(*instance->getModule()) == onBlackBoxes) {
                    clocks[at] = design.clockOf(*instance, *net);
                }
            }
        }
        return clocks;
    }

    void write(ResultWriter &writer, const PathResolver::Bit &bit, const Clock *clock)
    {
        m_found = m_found || clock != nullptr;
        std::string path = bit.net != nullptr ? VDBHelper::getNetFullName(bit.net, bit.instance) : bit.name;
        if (writer.isTable() && path != bit.name) {
            path += " (= " + bit.name + ")";
        }
        const Value none = writer.isTable() ? Value(std::string_view("(none)")) : Value();
        writer.row({std::string_view(path), clock != nullptr ? Value(std::string_view(clock->name)) : none});
    }

    bool m_found = false;
};

} // namespace

std::unique_ptr<Command> makeClockOfCommand()
{
    return std::make_unique<ClockOfCommand>();
}

} // namespace kvr::netlistdb::tool
