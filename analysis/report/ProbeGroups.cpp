#include <netlistdb/analysis/ProbeReport.h>

#include <algorithm>
#include <vector>

namespace kvr::netlistdb::analysis {

namespace {

bool isBefore(const std::optional<ClockId> &a, const std::optional<ClockId> &b)
{
    return a && b ? *a < *b : a.has_value() && !b.has_value();
}

} // namespace

void ProbeGroups::add(const SignalReport &report)
{
    std::vector<std::optional<ClockId>> met;
    for (const ProbeBit &bit : report.bits) {
        if (!bit.mayBeProbed) {
            continue;
        }
        auto group =
            std::lower_bound(m_groups.begin(), m_groups.end(), bit.clock,
                             [](const ProbeGroup &each, const auto &clock) { return isBefore(each.clock, clock); });
        if (group == m_groups.end() || group->clock != bit.clock) {
            group = m_groups.insert(group, ProbeGroup{bit.clock, 0, 0, 0, 0});
        }
        if (std::find(met.begin(), met.end(), bit.clock) == met.end()) {
            met.push_back(bit.clock);
            ++group->signals;
        }
        group->edges = static_cast<std::uint8_t>(group->edges | bit.edges);
        ++group->bits;
        group->wires += m_wires[bit.clock].insert(bit.wire).second ? 1 : 0;
    }
}

} // namespace kvr::netlistdb::analysis
