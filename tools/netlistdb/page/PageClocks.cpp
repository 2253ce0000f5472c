#include "page/PageClocks.h"

#include "design/ClockWords.h"
#include "design/CrossingRows.h"
#include "page/PageDesign.h"
#include "page/PagePart.h"

#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

/// Rows of crossings in a page; a design with more is one whose clocks have not been understood yet.
constexpr std::size_t MOST_ROWS = 20000;

Json placeOf(PageDesign &page, const std::string &file, std::uint64_t line)
{
    return {page.fileNumber(file), line};
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
    CrossingRows rows(false);
    for (const analysis::Crossing &crossing : crossings.all()) {
        rows.add(crossing, crossing.kind, nullptr);
    }
    Json list = Json::array();
    Json pairs = Json::array();
    std::map<std::pair<std::int64_t, analysis::ClockId>, CrossingCounts> counts;
    for (const analysis::Crossing &crossing : crossings.all()) {
        counts[{crossing.launch ? static_cast<std::int64_t>(*crossing.launch) : -1, crossing.capture}].add(crossing,
                                                                                                           false);
    }
    for (const auto &[pair, count] : counts) {
        pairs.push_back({pair.first, pair.second, count.safe, count.warning, count.unsafe});
    }
    for (const CrossingRow &row : rows.rows()) {
        if (list.size() == MOST_ROWS) {
            break;
        }
        const analysis::Crossing &crossing = *row.first;
        Json object = {{"launch", crossing.launch ? static_cast<std::int64_t>(*crossing.launch) : -1},
                       {"capture", crossing.capture},
                       {"class", nameOf(row.kind)},
                       {"severity", nameOf(severityOf(row.kind))},
                       {"from", row.from()},
                       {"to", row.to()},
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
        list.push_back(std::move(object));
    }
    part.write(jsonText(list));
    return {{"all", rows.rows().size()}, {"listed", list.size()}, {"pairs", std::move(pairs)}};
}

} // namespace kvr::netlistdb::tool
