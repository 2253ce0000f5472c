#include "commands/Command.h"
#include "commands/Session.h"
#include "design/ClockTree.h"
#include "design/ClockWords.h"
#include "design/Design.h"
#include "design/SourceText.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
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
        const auto design = loadDesign(m_design, Clocks::Yes, session.reading());
        session.progress.begin("tracing clocks");
        session.stats.begin("trace");
        const analysis::ClockMap &map = design->clocks();
        const analysis::NetCounts counts = map.countNets();
        const auto writer = session.makeWriter();
        ResultHead head;
        head.command = "clocks";
        head.facts = {{"top", design->nameOf(design->top())}, {"form", nameOf(design->form())}};
        head.columns = {{nullptr, "CLOCK", Look::Name},
                        {"clock", nullptr},
                        {"root", "ROOT"},
                        {"edges", "EDGES"},
                        {"registers", "REGISTERS", Look::Plain, true},
                        {"nets", "NETS", Look::Plain, true},
                        {"parents", nullptr},
                        {nullptr, "SOURCE", Look::Dim},
                        {nullptr, "ALSO"},
                        {"aliases", nullptr},
                        {"instance", nullptr},
                        {"file", nullptr},
                        {"line", nullptr},
                        {"sources", nullptr}};
        session.progress.clear();
        writer->begin(head);
        for (const ClockTreeLine &line : clockTreeOf(map)) {
            write(*design, line, counts.launched[line.clock], *writer);
        }
        session.stats.end();
        const int exitCode = session.finish(*writer, !map.clocks().empty(), Ending::Complete,
                                            {{"nets", counts.nets}, {"nets_without_clock", counts.withoutClock}});
        if (writer->isTable()) {
            session.note(fmt::format("{} of {} nets are reached by no clock", counts.withoutClock, counts.nets));
        }
        return exitCode;
    }

  private:
    void write(Design &design, const ClockTreeLine &line, std::uint64_t nets, ResultWriter &writer) const
    {
        const std::vector<analysis::Clock> &clocks = design.clocks().clocks();
        const analysis::Clock &clock = clocks[line.clock];
        std::vector<std::string> parents;
        for (const analysis::ClockId parent : clock.parents) {
            parents.push_back(clocks[parent].name);
        }
        const IVDBLineInfo *source = clock.net != nullptr ? clock.net->getLineInfo() : nullptr;
        const std::vector<std::string> aliases = aliasesOf(design, clock);
        std::vector<std::string> sources;
        if (clock.instance != nullptr && clock.net != nullptr) {
            sources = design.names(*clock.instance->getModule()).sourcesOf(*clock.net);
        }
        const std::string instance = clock.instance != nullptr ? clock.instance->getPath() : std::string();
        const std::string drawn = line.drawing + clock.name;
        const std::string shown = sourceText(source, m_directory);
        const std::string also = alsoText(aliases, parents, line);
        writer.row({std::string_view(drawn), std::string_view(clock.name), std::string_view(nameOf(clock.root)),
                    std::string_view(edgesText(clock.edges)), clock.registers, nets, &parents, std::string_view(shown),
                    std::string_view(also), &aliases, std::string_view(instance), fileOf(source), lineOf(source),
                    &sources});
    }

    /// What else the wire of @p clock is called, as a domain of the database and in its own instance.
    static std::vector<std::string> aliasesOf(Design &design, const analysis::Clock &clock)
    {
        std::vector<std::string> aliases = clock.names;
        if (clock.instance != nullptr && clock.net != nullptr) {
            std::string prefix = clock.instance->getPath();
            prefix += prefix.empty() ? "" : "/";
            for (const std::string &alias : design.names(*clock.instance->getModule()).aliasesOf(*clock.net)) {
                std::string name = prefix;
                name += alias;
                if (std::find(aliases.begin(), aliases.end(), name) == aliases.end()) {
                    aliases.push_back(std::move(name));
                }
            }
        }
        return aliases;
    }

    /// The first few of @p aliases and the parents that are not drawn, for a table.
    static std::string alsoText(const std::vector<std::string> &aliases, const std::vector<std::string> &parents,
                                const ClockTreeLine &line)
    {
        constexpr std::size_t MOST = 3;
        const auto end = aliases.begin() + static_cast<std::ptrdiff_t>(std::min(aliases.size(), MOST));
        std::string text = fmt::format("{}", fmt::join(aliases.begin(), end, " "));
        if (aliases.size() > MOST) {
            text += fmt::format(" and {} more", aliases.size() - MOST);
        }
        if (parents.size() > (line.drawing.empty() ? 0U : 1U)) {
            text += fmt::format("{}(made from {})", text.empty() ? "" : " ", fmt::join(parents, ", "));
        }
        return text;
    }

    std::string m_directory = workingDirectory();
};

} // namespace

std::unique_ptr<Command> makeClocksCommand()
{
    return std::make_unique<ClocksCommand>();
}

} // namespace kvr::netlistdb::tool
