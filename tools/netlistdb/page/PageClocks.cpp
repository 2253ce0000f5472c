#include "page/PageClocks.h"

#include "design/ClockWords.h"
#include "design/CrossingTotals.h"
#include "page/PageDesign.h"
#include "page/PagePart.h"

#include <array>
#include <map>
#include <netlistdb/netlistdb.h>
#include <utility>

namespace kvr::netlistdb::tool {

namespace {

/// Rows of crossings in a page, and those between two clocks that are equally bad. A design with more is one whose
/// clocks have not been understood yet.
constexpr std::size_t MOST_ROWS = 20000;
constexpr std::size_t MOST_ROWS_ALIKE = 200;

/// Launch and capture clock; the launch clock -1 when there is none.
using Pair = std::pair<std::int64_t, analysis::ClockId>;

Pair pairOf(const analysis::Crossing &crossing)
{
    return {crossing.launch ? static_cast<std::int64_t>(*crossing.launch) : -1, crossing.capture};
}

/// What there is between two clocks.
struct PairCounts {
    CrossingCounts crossings;
    std::size_t rows = 0;
    std::array<std::size_t, 3> listed{}; ///< rows in the page, by severity
};

Json placeOf(PageDesign &page, const std::string &file, std::uint64_t line)
{
    return {page.fileNumber(file), line};
}

Json rowOf(PageDesign &page, const CrossingRows &rows, const CrossingRow &row)
{
    const analysis::Crossing &crossing = *row.first;
    const Pair pair = pairOf(crossing);
    Json object = {{"launch", pair.first},
                   {"capture", pair.second},
                   {"class", nameOf(row.kind)},
                   {"severity", nameOf(severityOf(row.kind))},
                   {"from", rows.from(row)},
                   {"to", rows.to(row)},
                   {"pin", crossing.to.pin.substr(0, crossing.to.pin.find('['))},
                   {"bits", row.bits},
                   {"cells", row.cells},
                   {"stages", row.stages},
                   {"place", placeOf(page, crossing.place.file, crossing.place.line)}};
    if (!crossing.control.empty()) {
        object["control"] = crossing.control;
    }
    if (!crossing.meets.empty()) {
        object["meets"] = crossing.meets;
    }
    return object;
}

} // namespace

Json pageClocksOf(PageDesign &page)
{
    const analysis::ClockMap &map = page.clocks();
    const analysis::NetCounts counts = map.countNets();
    Json list = Json::array();
    for (analysis::ClockId id = 0; id < map.clocks().size(); ++id) {
        const analysis::Clock &clock = map.clocks()[id];
        Json object = {{"name", clock.name},           {"number", map.state().table.numberOf(id)},
                       {"root", nameOf(clock.root)},   {"edges", edgesText(clock.edges)},
                       {"registers", clock.registers}, {"nets", counts.launched[id]},
                       {"parents", clock.parents},     {"names", clock.names}};
        if (const IVDBLineInfo *const source = clock.net != nullptr ? clock.net->getLineInfo() : nullptr) {
            object["place"] = placeOf(page, source->getFilePath(), source->getLineNumber());
        }
        list.push_back(std::move(object));
    }
    return {{"list", std::move(list)}, {"nets", counts.nets}, {"withoutClock", counts.withoutClock}};
}

Json writeCrossings(PageDesign &page, PagePart &part)
{
    const analysis::Crossings crossings(page.clocks());
    const CrossingRules noRules;
    const CrossingRows rows(crossings.all(), page.clocks(), noRules, {});
    std::map<Pair, PairCounts> pairs;
    Json list = Json::array();
    for (const CrossingRow &row : rows.all()) {
        PairCounts &counts = pairs[pairOf(*row.first)];
        counts.crossings.add(row);
        ++counts.rows;
        std::size_t &listed = counts.listed[static_cast<std::size_t>(severityOf(row.kind))];
        if (listed < MOST_ROWS_ALIKE && list.size() < MOST_ROWS) {
            ++listed;
            list.push_back(rowOf(page, rows, row));
        }
    }
    part.write(jsonText(list));
    Json counted = Json::array();
    for (const auto &[pair, counts] : pairs) {
        const CrossingCounts &each = counts.crossings;
        counted.push_back({pair.first, pair.second, each.safe, each.warning, each.unsafe, counts.rows});
    }
    return {{"all", rows.all().size()}, {"listed", list.size()}, {"pairs", std::move(counted)}};
}

} // namespace kvr::netlistdb::tool
