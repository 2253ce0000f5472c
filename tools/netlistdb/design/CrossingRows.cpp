#include "design/CrossingRows.h"

#include "design/CrossingWords.h"
#include "design/Subscript.h"

#include <algorithm>
#include <fmt/format.h>

namespace kvr::netlistdb::tool {

namespace {

const std::string &busOf(const analysis::CrossingEnd &end)
{
    return end.bus.empty() ? end.name : end.bus;
}

/// The name of a pin without its subscript.
std::string portOf(const std::string &pin)
{
    return pin.substr(0, pin.find('['));
}

std::string textOf(const analysis::CrossingEnd &end, std::vector<int> bits)
{
    return end.bus.empty() ? end.name : bitsText(end.bus, bits);
}

} // namespace

std::string CrossingRow::from() const
{
    return textOf(first->from, fromBits);
}

std::string CrossingRow::to() const
{
    return textOf(first->to, toBits);
}

void CrossingRows::add(const analysis::Crossing &crossing, analysis::CrossingClass kind,
                       const CrossingRules::Waiver *waiver)
{
    const std::vector<std::string> key{
        crossing.launch ? fmt::to_string(*crossing.launch) : std::string(),
        fmt::to_string(crossing.capture),
        nameOf(kind),
        busOf(crossing.from),
        busOf(crossing.to),
        portOf(crossing.to.pin),
        fmt::to_string(crossing.isKept),
        waiver != nullptr ? fmt::to_string(waiver->line()) : std::string(),
    };
    const auto [place, isNew] = m_byBit ? std::pair(m_places.end(), true) : m_places.try_emplace(key, m_rows.size());
    if (isNew) {
        m_rows.push_back({&crossing, kind, waiver, {}, {}, 0, crossing.cells, crossing.stages});
    }
    CrossingRow &row = isNew ? m_rows.back() : m_rows[place->second];
    row.fromBits.push_back(crossing.from.bit);
    row.toBits.push_back(crossing.to.bit);
    ++row.bits;
    row.cells = std::min(row.cells, crossing.cells);
    row.stages = std::min(row.stages, crossing.stages);
}

void CrossingCounts::add(const analysis::Crossing &crossing, bool isWaived)
{
    if (isWaived) {
        ++waived;
    } else if (crossing.severity() == analysis::Severity::Safe) {
        ++safe;
    } else if (crossing.severity() == analysis::Severity::Warning) {
        ++warning;
    } else {
        ++unsafe;
    }
}

} // namespace kvr::netlistdb::tool
