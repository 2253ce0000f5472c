#include "design/NetClockRows.h"

#include "design/ClockChains.h"
#include "design/ClockWords.h"
#include "design/Design.h"
#include "design/FullNames.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

std::vector<std::string> namesOf(const std::vector<analysis::ReachingClock> &reaching, const analysis::ClockMap &clocks)
{
    std::vector<std::string> names;
    names.reserve(reaching.size());
    for (const analysis::ReachingClock &each : reaching) {
        names.push_back(clocks.clocks()[each.clock].name);
    }
    return names;
}

/// What else @p bit is called, by full names, and where it comes from; tables do not show it.
ItemFacts namesOf(Design &design, const PathResolver::Bit &bit, bool isTable)
{
    if (isTable || bit.net == nullptr) {
        return {};
    }
    ItemFacts facts = factsOf(design.names(*bit.instance->getModule()), *bit.net);
    joinAll(bit.instance->getPath(), facts.aliases);
    return facts;
}

std::string alsoText(const std::vector<std::string> &networks, const std::vector<std::string> &reached)
{
    std::string text = fmt::format("{}", fmt::join(reached, " "));
    for (const std::string &network : networks) {
        text += fmt::format("{}clock:{}", text.empty() ? "" : " ", network);
    }
    return text;
}

} // namespace

std::string shownPath(const PathResolver::Bit &bit, bool isTable)
{
    std::string path = bit.net != nullptr ? VDBHelper::getNetFullName(bit.net, bit.instance) : bit.name;
    if (isTable && path != bit.name) {
        path += " (= " + bit.name + ")";
    }
    return path;
}

CapturedNet capturedOf(const analysis::CaptureClocks &capture, const analysis::ClockMap &map)
{
    CapturedNet captured;
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

std::vector<Column> NetClockRows::columns() const
{
    std::vector<Column> columns = {{"net", "NET"},          {"clock", nullptr},    {nullptr, "CLOCKS", Look::Name},
                                   {"clocks", nullptr},     {"networks", nullptr}, {nullptr, "ALSO", Look::Dim},
                                   {"reached_by", nullptr}, {"aliases", nullptr},  {"sources", nullptr}};
    if (m_choice.capture) {
        columns.insert(columns.end(), {{nullptr, "CAPTURED BY"}, {"captured_by", nullptr}, {"reaches", nullptr}});
    }
    if (m_choice.why) {
        columns.push_back({"why", nullptr});
    }
    return columns;
}

bool NetClockRows::step(ResultWriter &writer)
{
    if (m_next == m_bits.size()) {
        return false;
    }
    write(m_bits[m_next++], writer);
    return true;
}

void NetClockRows::write(const PathResolver::Bit &bit, ResultWriter &writer)
{
    const analysis::ClockMap &map = m_design.clocks();
    analysis::LaunchClocks launch;
    if (bit.net != nullptr) {
        launch = map.launch(bit.instance, bit.net);
    } else {
        launch.reached = analysis::REACHED_BY_CONSTANT;
    }
    m_found += launch.clocks.empty() ? 0 : 1;
    const std::string path = shownPath(bit, writer.isTable());
    const std::vector<std::string> clocks = namesOf(launch.clocks, map);
    const std::vector<std::string> networks = namesOf(launch.networks, map);
    const std::vector<std::string> reached = reachingWords(launch.reached);
    const std::string shown = clocks.empty() ? "(none)" : fmt::format("{}", fmt::join(clocks, " "));
    const std::string also = alsoText(networks, reached);
    const ItemFacts names = namesOf(m_design, bit, writer.isTable());
    Row row = {std::string_view(path),
               clocks.empty() ? Value() : Value(std::string_view(clocks.front())),
               std::string_view(shown),
               &clocks,
               &networks,
               std::string_view(also),
               &reached,
               &names.aliases,
               &names.sources};
    CapturedNet captured;
    if (m_choice.capture) {
        captured = bit.net != nullptr ? capturedOf(map.capture(bit.instance, bit.net), map) : CapturedNet();
        row.insert(row.end(), {std::string_view(captured.shown), &captured.clocks, &captured.reached});
    }
    Json why;
    if (m_choice.why) {
        why = bit.net != nullptr ? jsonOf(map.why(bit.instance, bit.net), map) : Json();
        row.emplace_back(&why);
    }
    writer.row(row);
}

} // namespace kvr::netlistdb::tool
