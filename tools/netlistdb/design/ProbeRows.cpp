#include "design/ProbeRows.h"

#include "design/ClockWords.h"
#include "design/Design.h"
#include "design/FullNames.h"
#include "design/NetClocks.h"
#include "design/Subscript.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <netlistdb/netlistdb.h>
#include <unordered_map>

namespace kvr::netlistdb::tool {

namespace {

/// Vectors of the device that a table names for one bus.
constexpr std::size_t MOST_VECTORS = 3;

std::vector<std::string> reasonsOf(const analysis::SignalReport &report)
{
    std::vector<std::string> reasons;
    for (const analysis::ProbeFinding &finding : report.findings) {
        if (const char *const name = nameOf(finding.reason); reasons.empty() || reasons.back() != name) {
            reasons.emplace_back(name);
        }
    }
    return reasons;
}

std::vector<std::string> gradesOf(const analysis::SignalReport &report)
{
    std::vector<std::string> grades;
    for (const analysis::ProbeBit &bit : report.bits) {
        const std::string grade = bit.match ? nameOf(bit.match->grade) : "";
        if (!grade.empty() && std::find(grades.begin(), grades.end(), grade) == grades.end()) {
            grades.push_back(grade);
        }
    }
    return grades;
}

/// For each bit the net of the device to sample, with "~" in front when it carries the inverse; empty for none.
std::vector<std::string> deviceNetsOf(const analysis::SignalReport &report)
{
    std::vector<std::string> nets;
    for (const analysis::ProbeBit &bit : report.bits) {
        nets.push_back(bit.target ? (bit.target->inverted ? "~" : "") +
                                        VDBHelper::getNetFullName(bit.target->net, bit.target->instance)
                                  : std::string());
    }
    return nets;
}

/// The same in short: bits of one vector together.
std::string shortNames(const std::vector<std::string> &nets)
{
    std::vector<std::pair<std::string, std::vector<int>>> vectors;
    std::unordered_map<std::string, std::size_t> places;
    for (const std::string &net : nets) {
        if (net.empty()) {
            continue;
        }
        std::string_view vector;
        int index = 0;
        const bool isBit = takeSubscript(net, vector, index);
        const std::string name(isBit ? vector : net);
        const auto [place, isNew] = places.try_emplace(name, vectors.size());
        if (isNew) {
            vectors.emplace_back(name, std::vector<int>());
        }
        if (isBit) {
            vectors[place->second].second.push_back(index);
        }
    }
    std::string text;
    for (std::size_t at = 0; at < vectors.size() && at < MOST_VECTORS; ++at) {
        auto &[name, bits] = vectors[at];
        text += (text.empty() ? "" : " ") + (bits.empty() ? name : bitsText(name, bits));
    }
    return vectors.size() > MOST_VECTORS ? fmt::format("{} and {} more", text, vectors.size() - MOST_VECTORS) : text;
}

std::uint8_t edgesOf(const analysis::SignalReport &report, std::optional<analysis::ClockId> clock)
{
    unsigned edges = 0;
    for (const analysis::ProbeBit &bit : report.bits) {
        edges |= bit.clock == clock ? bit.edges : 0U;
    }
    return static_cast<std::uint8_t>(edges);
}

} // namespace

std::optional<analysis::ClockId> samplingClockOf(const analysis::SignalReport &report)
{
    std::vector<std::pair<analysis::ClockId, std::size_t>> counts;
    const bool hasAny = report.probeable() > 0;
    for (const analysis::ProbeBit &bit : report.bits) {
        if (!bit.clock || (hasAny && !bit.mayBeProbed)) {
            continue;
        }
        const auto known =
            std::find_if(counts.begin(), counts.end(), [&](const auto &each) { return each.first == *bit.clock; });
        if (known != counts.end()) {
            ++known->second;
        } else {
            counts.emplace_back(*bit.clock, 1);
        }
    }
    const auto most = std::max_element(counts.begin(), counts.end(),
                                       [](const auto &a, const auto &b) { return a.second < b.second; });
    return most != counts.end() ? std::optional(most->first) : std::nullopt;
}

std::vector<Column> ProbeRows::columns(bool hasDevice)
{
    std::vector<Column> columns = {{"kind", nullptr},
                                   {"path", "PATH"},
                                   {"width", "WIDTH", Look::Plain, true},
                                   {"bits", "BITS", Look::Plain, true},
                                   {"verdict", "VERDICT"},
                                   {"clock", "CLOCK", Look::Name},
                                   {"edge", "EDGE"},
                                   {"reasons", "REASONS"}};
    if (hasDevice) {
        columns.insert(columns.end(), {{"grades", "GRADE"}, {nullptr, "POST-MAP"}, {"post_map", nullptr}});
    }
    columns.insert(columns.end(), {{nullptr, "SOURCE", Look::Dim},
                                   {"clocks", nullptr},
                                   {"user_declared", nullptr},
                                   {"file", nullptr},
                                   {"line", nullptr},
                                   {"aliases", nullptr},
                                   {"sources", nullptr}});
    return columns;
}

void ProbeRows::write(IVDBInstance &instance, const Probe &probe, const analysis::SignalReport &report)
{
    findClocks(m_design, instance, probe.bits, m_clocks);
    const std::string instancePath = instance.getPath();
    const std::string path = joined(instancePath, probe.name);
    const std::string shown = sourceText(probe.source, m_directory);
    std::vector<std::string> aliases = probe.aliases;
    joinAll(instancePath, aliases);
    const std::optional<analysis::ClockId> clock = samplingClockOf(report);
    const std::vector<std::string> reasons = reasonsOf(report);
    Row row = {std::string_view(probe.isBus ? "bus" : "net"),
               std::string_view(path),
               probe.width,
               std::uint64_t(report.probeable()),
               std::string_view(nameOf(report.verdict)),
               clock ? Value(std::string_view(m_design.clocks().clocks()[*clock].name)) : Value(),
               textOrNull(edgesText(clock ? edgesOf(report, clock) : std::uint8_t(0))),
               &reasons};
    const std::vector<std::string> grades = gradesOf(report);
    const std::vector<std::string> nets = deviceNetsOf(report);
    const std::string spans = m_hasDevice && m_writer.isTable() ? shortNames(nets) : std::string();
    if (m_hasDevice) {
        row.insert(row.end(), {&grades, std::string_view(spans), &nets});
    }
    row.insert(row.end(), {std::string_view(shown), &m_clocks, probe.declared, fileOf(probe.source),
                           lineOf(probe.source), &aliases, &probe.sources});
    m_writer.row(row);
    m_writer.tick();
}

Json groupsOf(const analysis::ProbeGroups &groups, const analysis::ClockMap &clocks)
{
    Json list = Json::array();
    for (const analysis::ProbeGroup &group : groups.all()) {
        Json line;
        line["clock"] = group.clock ? Json(clocks.clocks()[*group.clock].name) : Json(nullptr);
        line["edges"] = group.edges != 0 ? Json(edgesText(group.edges)) : Json(nullptr);
        line["signals"] = group.signals;
        line["bits"] = group.bits;
        line["wires"] = group.wires;
        list.push_back(line);
    }
    return list;
}

void writeGroups(const Json &groups, ResultWriter &writer)
{
    writer.begin({"probes",
                  {},
                  {{"clock", "SAMPLING CLOCK", Look::Name},
                   {"edges", "EDGES"},
                   {"signals", "NETS AND BUSES", Look::Plain, true},
                   {"bits", "BITS", Look::Plain, true},
                   {"wires", "WIRES", Look::Plain, true}}});
    for (const Json &line : groups) {
        const std::string clock = line["clock"].is_null() ? "(none)" : line["clock"].get<std::string>();
        const std::string edges = line["edges"].is_null() ? "" : line["edges"].get<std::string>();
        const auto count = [&line](const char *key) { return Value(line[key].get<std::uint64_t>()); };
        writer.row({std::string_view(clock), std::string_view(edges), count("signals"), count("bits"), count("wires")});
    }
    writer.end(Ending::Complete, {});
}

} // namespace kvr::netlistdb::tool
