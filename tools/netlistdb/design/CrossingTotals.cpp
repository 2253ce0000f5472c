#include "design/CrossingTotals.h"

namespace kvr::netlistdb::tool {

void CrossingCounts::add(const CrossingRow &row)
{
    const analysis::Severity severity = severityOf(row.kind);
    std::uint64_t &count = row.waiver != nullptr                     ? waived
                           : severity == analysis::Severity::Safe    ? safe
                           : severity == analysis::Severity::Warning ? warning
                                                                     : unsafe;
    count += row.deciding;
}

Json CrossingTotals::summary(const analysis::ClockMap &clocks) const
{
    Json summary = Json::array();
    for (const auto &[pair, counts] : pairs) {
        Json line;
        line["launch"] = pair.first ? Json(clocks.clocks()[*pair.first].name) : Json(nullptr);
        line["capture"] = clocks.clocks()[pair.second].name;
        line["safe"] = counts.safe;
        line["warning"] = counts.warning;
        line["unsafe"] = counts.unsafe;
        line["waived"] = counts.waived;
        summary.push_back(line);
    }
    return summary;
}

} // namespace kvr::netlistdb::tool
