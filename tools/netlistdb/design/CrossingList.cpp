#include "design/CrossingList.h"

#include "design/CrossingWords.h"

#include <algorithm>
#include <fmt/format.h>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

using analysis::Crossing;

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

CrossingList::CrossingList(const CrossingRows &rows, const analysis::ClockMap &clocks, const CrossingChoice &choice)
    : m_rows(rows), m_clocks(clocks), m_choice(choice), m_from(clocks, choice.from), m_to(clocks, choice.to)
{
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
    const std::vector<CrossingRow> &rows = m_rows.all();
    const auto next = std::find_if(rows.begin() + static_cast<std::ptrdiff_t>(m_next), rows.end(),
                                   [this](const CrossingRow &row) { return isShown(row); });
    if (next == rows.end()) {
        return false;
    }
    m_next = static_cast<std::size_t>(next - rows.begin()) + 1;
    write(*next, writer);
    return true;
}

CrossingTotals CrossingList::totals() const
{
    CrossingTotals totals;
    auto pair = totals.pairs.end();
    for (const CrossingRow &row : m_rows.all()) {
        if (!isBetween(row)) {
            continue;
        }
        if (row.waiver != nullptr) {
            totals.usedWaivers.insert(row.waiver);
        }
        if (!isChosen(row)) {
            continue;
        }
        if (row.deciding > 0) {
            // Those of one pair stand together.
            const ClockPair its{row.launch, row.capture};
            if (pair == totals.pairs.end() || pair->first != its) {
                pair = totals.pairs.try_emplace(its).first;
            }
            pair->second.add(row);
        }
        totals.waived += row.waiver != nullptr ? row.deciding : 0;
        totals.hasFailed = totals.hasFailed || (row.waiver == nullptr && m_choice.failures.has(row.kind));
        totals.isEmpty = totals.isEmpty && !isShown(row);
    }
    return totals;
}

/// Whether a row is from and to clocks that were asked for.
bool CrossingList::isBetween(const CrossingRow &row) const
{
    return m_from.has(row.launch) && m_to.has(row.capture);
}

/// Whether a row is of a class that was asked for.
bool CrossingList::isChosen(const CrossingRow &row) const
{
    return m_choice.classes.has(row.kind) && m_choice.severities.has(severityOf(row.kind));
}

bool CrossingList::isShown(const CrossingRow &row) const
{
    return isBetween(row) && isChosen(row) && (row.waiver == nullptr || m_choice.waived);
}

void CrossingList::write(const CrossingRow &row, ResultWriter &writer) const
{
    const Crossing &crossing = *row.first;
    const std::string launch = launchName(crossing, m_clocks);
    const std::string from = m_rows.from(row);
    const std::string to = m_rows.to(row);
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
                std::uint64_t(row.bits),
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

} // namespace kvr::netlistdb::tool
