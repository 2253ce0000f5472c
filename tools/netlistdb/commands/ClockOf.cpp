#include "base/Failure.h"
#include "commands/Command.h"
#include "commands/Session.h"
#include "design/ClockChains.h"
#include "design/ClockWords.h"
#include "design/Design.h"
#include "design/PathResolver.h"
#include "design/SourceText.h"
#include "output/Json.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
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
        CLI::Option *why = app.add_flag("--why", m_why, "Show for each clock the shortest chain that proves it");
        CLI::Option *capture =
            app.add_flag("--capture", m_capture, "Show the clocks whose registers the net reaches, too");
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
        const auto writer = session.makeWriter();
        ResultHead head;
        head.command = "clock-of";
        head.facts = {{"top", design->nameOf(design->top())}, {"form", nameOf(design->form())}};
        head.columns = columns();
        if (m_why && writer->isTable()) {
            writePictures(*design, bits, session);
        } else {
            writer->begin(head);
            if (m_first) {
                writeFirst(*design, bits, *writer);
            } else {
                writeAll(*design, bits, *writer);
            }
        }
        session.stats.end();
        const int exitCode =
            m_why && writer->isTable() ? session.finish(m_found) : session.finish(*writer, m_found, Ending::Complete);
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
    std::vector<Column> columns() const
    {
        if (m_first) {
            return {{"net", "NET"}, {"clock", "CLOCK", Look::Name}};
        }
        std::vector<Column> columns = {{"net", "NET"},          {"clock", nullptr},    {nullptr, "CLOCKS", Look::Name},
                                       {"clocks", nullptr},     {"networks", nullptr}, {nullptr, "ALSO", Look::Dim},
                                       {"reached_by", nullptr}, {"aliases", nullptr},  {"sources", nullptr}};
        if (m_capture) {
            columns.insert(columns.end(), {{nullptr, "CAPTURED BY"}, {"captured_by", nullptr}, {"reaches", nullptr}});
        }
        if (m_why) {
            columns.push_back({"why", nullptr});
        }
        return columns;
    }

    /// What the path of @p bit looks like: with the name that it was asked for by, in a table.
    static std::string shownPath(const PathResolver::Bit &bit, bool isTable)
    {
        std::string path = bit.net != nullptr ? VDBHelper::getNetFullName(bit.net, bit.instance) : bit.name;
        if (isTable && path != bit.name) {
            path += " (= " + bit.name + ")";
        }
        return path;
    }

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

    static std::vector<std::string> namesOf(const std::vector<analysis::ReachingClock> &reaching,
                                            const analysis::ClockMap &clocks)
    {
        std::vector<std::string> names;
        names.reserve(reaching.size());
        for (const analysis::ReachingClock &each : reaching) {
            names.push_back(clocks.clocks()[each.clock].name);
        }
        return names;
    }

    /// What else @p bit is called, by full names, and where it comes from; tables do not show it.
    static ItemFacts namesOf(Design &design, const PathResolver::Bit &bit, bool isTable)
    {
        if (isTable || bit.net == nullptr) {
            return {};
        }
        ItemFacts facts = factsOf(design.names(*bit.instance->getModule()), *bit.net);
        const std::string prefix = bit.instance->getPath();
        for (std::string &alias : facts.aliases) {
            alias.insert(0, prefix.empty() ? "" : prefix + "/");
        }
        return facts;
    }

    void writeAll(Design &design, const std::vector<PathResolver::Bit> &bits, ResultWriter &writer)
    {
        const analysis::ClockMap &map = design.clocks();
        for (const PathResolver::Bit &bit : bits) {
            analysis::LaunchClocks launch;
            if (bit.net != nullptr) {
                launch = map.launch(bit.instance, bit.net);
            } else {
                launch.reached = analysis::REACHED_BY_CONSTANT;
            }
            m_found = m_found || !launch.clocks.empty();
            const std::string path = shownPath(bit, writer.isTable());
            const std::vector<std::string> clocks = namesOf(launch.clocks, map);
            const std::vector<std::string> networks = namesOf(launch.networks, map);
            const std::vector<std::string> reached = reachingWords(launch.reached);
            const std::string shown = clocks.empty() ? "(none)" : fmt::format("{}", fmt::join(clocks, " "));
            const std::string also = alsoText(networks, reached);
            const ItemFacts names = namesOf(design, bit, writer.isTable());
            Row row = {std::string_view(path),
                       clocks.empty() ? Value() : Value(std::string_view(clocks.front())),
                       std::string_view(shown),
                       &clocks,
                       &networks,
                       std::string_view(also),
                       &reached,
                       &names.aliases,
                       &names.sources};
            Captured captured;
            if (m_capture) {
                captured = bit.net != nullptr ? capturedOf(map.capture(bit.instance, bit.net), map) : Captured();
                row.insert(row.end(), {std::string_view(captured.shown), &captured.clocks, &captured.reached});
            }
            Json why;
            if (m_why) {
                why = bit.net != nullptr ? jsonOf(map.why(bit.instance, bit.net), map) : Json();
                row.emplace_back(&why);
            }
            writer.row(row);
            writer.tick();
        }
    }

    static std::string alsoText(const std::vector<std::string> &networks, const std::vector<std::string> &reached)
    {
        std::string text = fmt::format("{}", fmt::join(reached, " "));
        for (const std::string &network : networks) {
            text += fmt::format("{}clock:{}", text.empty() ? "" : " ", network);
        }
        return text;
    }

    /// Where a net goes to, ready to be shown.
    struct Captured {
        std::vector<std::pair<std::string, std::string>> clocks; ///< with the roles of the pins
        std::vector<std::string> reached;
        std::string shown;
    };

    static Captured capturedOf(const analysis::CaptureClocks &capture, const analysis::ClockMap &map)
    {
        Captured captured;
        for (const analysis::CapturingClock &each : capture.clocks) {
            captured.clocks.emplace_back(map.clocks()[each.clock].name,
                                         fmt::format("{}", fmt::join(roleWords(each.roles), ",")));
            captured.shown += fmt::format("{}{}({})", captured.shown.empty() ? "" : " ", captured.clocks.back().first,
                                          captured.clocks.back().second);
        }
        captured.reached = reachedWords(capture.reached);
        for (const std::string &word : captured.reached) {
            captured.shown += (captured.shown.empty() ? "" : " ") + word;
        }
        return captured;
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
            if (m_capture) {
                session.output.write("  captured by: " + capturedOf(map.capture(bit.instance, bit.net), map).shown +
                                     "\n");
            }
        }
    }

    bool m_why = false;
    bool m_capture = false;
    bool m_first = false;
    bool m_found = false;
};

} // namespace

std::unique_ptr<Command> makeClockOfCommand()
{
    return std::make_unique<ClockOfCommand>();
}

} // namespace kvr::netlistdb::tool
