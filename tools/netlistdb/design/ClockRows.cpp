#include "design/ClockRows.h"

#include "design/ClockWords.h"
#include "design/Design.h"
#include "design/FullNames.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

/// What else the wire of @p clock is called, as a domain of the database and in its own instance.
std::vector<std::string> aliasesOf(Design &design, const analysis::Clock &clock)
{
    std::vector<std::string> aliases = clock.names;
    if (clock.instance != nullptr && clock.net != nullptr) {
        std::vector<std::string> others = design.names(*clock.instance->getModule()).aliasesOf(*clock.net);
        joinAll(clock.instance->getPath(), others);
        for (std::string &name : others) {
            if (std::find(aliases.begin(), aliases.end(), name) == aliases.end()) {
                aliases.push_back(std::move(name));
            }
        }
    }
    return aliases;
}

/// The first few of @p aliases and the parents that are not drawn, for a table.
std::string alsoText(const std::vector<std::string> &aliases, const std::vector<std::string> &parents,
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

} // namespace

ClockRows::ClockRows(Design &design, const analysis::NetCounts &counts)
    : m_design(design), m_counts(counts), m_lines(clockTreeOf(design.clocks()))
{
}

std::vector<Column> ClockRows::columns() const
{
    return {{nullptr, "CLOCK", Look::Name},
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
}

bool ClockRows::step(ResultWriter &writer)
{
    if (m_next == m_lines.size()) {
        return false;
    }
    write(m_lines[m_next++], writer);
    return true;
}

void ClockRows::write(const ClockTreeLine &line, ResultWriter &writer) const
{
    const std::vector<analysis::Clock> &clocks = m_design.clocks().clocks();
    const analysis::Clock &clock = clocks[line.clock];
    std::vector<std::string> parents;
    for (const analysis::ClockId parent : clock.parents) {
        parents.push_back(clocks[parent].name);
    }
    const IVDBLineInfo *source = clock.net != nullptr ? clock.net->getLineInfo() : nullptr;
    const std::vector<std::string> aliases = aliasesOf(m_design, clock);
    std::vector<std::string> sources;
    if (clock.instance != nullptr && clock.net != nullptr) {
        sources = m_design.names(*clock.instance->getModule()).sourcesOf(*clock.net);
    }
    const std::string instance = clock.instance != nullptr ? clock.instance->getPath() : std::string();
    const std::string drawn = line.drawing + clock.name;
    const std::string shown = sourceText(source, m_directory);
    const std::string also = alsoText(aliases, parents, line);
    writer.row({std::string_view(drawn), std::string_view(clock.name), std::string_view(nameOf(clock.root)),
                std::string_view(edgesText(clock.edges)), clock.registers, m_counts.launched[line.clock], &parents,
                std::string_view(shown), std::string_view(also), &aliases, std::string_view(instance), fileOf(source),
                lineOf(source), &sources});
}

} // namespace kvr::netlistdb::tool
