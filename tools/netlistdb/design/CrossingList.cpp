#include "design/CrossingList.h"

#include "design/ClockFilter.h"
#include "design/CrossingWords.h"

#include <fmt/format.h>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

using analysis::Crossing;
using analysis::CrossingClass;

namespace {

/// What a person wants to know beside the class.
std::string noteOf(const CrossingRow &row)
{
    const Crossing &crossing = *row.first;
    std::string note;
    const auto add = [&note](const std::string &text) { note += (note.empty() ? "" : "; ") + text; };
    if (row.stages > 0) {
        add(fmt::format("{} flip-flops", row.stages));
    }
    if (!crossing.control.empty()) {
        add("opened by " + crossing.control);
    }
    if (!crossing.meets.empty()) {
        add("meets another at " + crossing.meets);
    }
    if (row.waiver != nullptr) {
        add("waived: " + row.waiver->reason());
    }
    return note;
}

} // namespace

CrossingList::CrossingList(const analysis::Crossings &crossings, const analysis::ClockMap &clocks, CrossingRules &rules,
                           const CrossingChoice &choice)
    : m_clocks(clocks), m_choice(choice), m_rows(choice.bits)
{
    const ClockFilter from(clocks, choice.from);
    const ClockFilter to(clocks, choice.to);
    for (const Crossing &crossing : crossings.all()) {
        if (!from.has(crossing.launch) || !to.has(crossing.capture)) {
            continue;
        }
        const CrossingRules::Waiver *const waiver = rules.waiverOf(crossing, clocks);
        for (std::size_t number = 0; number < analysis::CROSSING_CLASSES; ++number) {
            const auto kind = static_cast<CrossingClass>(number);
            const bool isShown = choice.allClasses ? crossing.holds(kind) : crossing.kind == kind;
            if (isShown && choice.classes.has(kind) && choice.severities.has(severityOf(kind))) {
                take(crossing, kind, waiver);
            }
        }
    }
}

std::vector<Column> CrossingList::columns() const
{
    return {{"severity", "SEVERITY"},
            {"class", "CLASS"},
            {"launch", "LAUNCH", Look::Name},
            {"capture", "CAPTURE", Look::Name},
            {"from", "FROM"},
            {"to", "TO"},
            {"pin", "PIN"},
            {"bits", "BITS", Look::Plain, true},
            {"cells", "CELLS", Look::Plain, true},
            {nullptr, "SOURCE", Look::Dim},
            {nullptr, "NOTE", Look::Dim},
            {"stages", nullptr},
            {"kept", nullptr},
            {"logic", nullptr},
            {"several_sources", nullptr},
            {"control", nullptr},
            {"meets", nullptr},
            {"from_cell", nullptr},
            {"from_type", nullptr},
            {"to_cell", nullptr},
            {"to_type", nullptr},
            {"waived", nullptr},
            {"file", nullptr},
            {"line", nullptr}};
}

bool CrossingList::step(ResultWriter &writer)
{
    if (m_next == m_rows.rows().size()) {
        return false;
    }
    write(m_rows.rows()[m_next++], writer);
    return true;
}

void CrossingList::take(const Crossing &crossing, CrossingClass kind, const CrossingRules::Waiver *waiver)
{
    if (kind == crossing.kind) {
        m_counts[{crossing.launch, crossing.capture}].add(crossing, waiver != nullptr);
        m_waivedCount += waiver != nullptr ? 1 : 0;
    }
    if (waiver == nullptr) {
        m_failed = m_failed || m_choice.failures.has(kind);
    }
    if (waiver == nullptr || m_choice.waived) {
        m_rows.add(crossing, kind, waiver);
    }
}

void CrossingList::write(const CrossingRow &row, ResultWriter &writer) const
{
    const Crossing &crossing = *row.first;
    const std::string launch = launchName(crossing, m_clocks);
    const std::string from = row.from();
    const std::string to = row.to();
    const std::string pin = m_choice.bits ? crossing.to.pin : crossing.to.pin.substr(0, crossing.to.pin.find('['));
    const std::string source = sourceText(crossing.place.file, crossing.place.line, m_directory);
    const std::string note = noteOf(row);
    const bool hasPlace = !crossing.place.file.empty();
    const bool showsLaunch = crossing.launch.has_value() || writer.isTable();
    writer.row({std::string_view(nameOf(severityOf(row.kind))),
                std::string_view(nameOf(row.kind)),
                showsLaunch ? Value(std::string_view(launch)) : Value(),
                std::string_view(m_clocks.clocks()[crossing.capture].name),
                std::string_view(from),
                std::string_view(to),
                std::string_view(pin),
                row.bits,
                std::uint64_t(row.cells),
                std::string_view(source),
                std::string_view(note),
                std::uint64_t(row.stages),
                crossing.isKept,
                crossing.hasLogic,
                crossing.hasSeveralSources,
                textOrNull(crossing.control),
                textOrNull(crossing.meets),
                textOrNull(crossing.from.cell),
                textOrNull(crossing.from.cellType),
                std::string_view(crossing.to.cell),
                std::string_view(crossing.to.cellType),
                row.waiver != nullptr ? Value(std::string_view(row.waiver->reason())) : Value(),
                textOrNull(crossing.place.file),
                hasPlace ? Value(std::uint64_t(crossing.place.line)) : Value()});
}

Json CrossingList::summary() const
{
    Json summary = Json::array();
    for (const auto &[pair, counts] : m_counts) {
        Json line;
        line["launch"] = pair.first ? Json(m_clocks.clocks()[*pair.first].name) : Json(nullptr);
        line["capture"] = m_clocks.clocks()[pair.second].name;
        line["safe"] = counts.safe;
        line["warning"] = counts.warning;
        line["unsafe"] = counts.unsafe;
        line["waived"] = counts.waived;
        summary.push_back(line);
    }
    return summary;
}

} // namespace kvr::netlistdb::tool
