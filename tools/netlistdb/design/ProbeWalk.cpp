#include "design/ProbeWalk.h"

#include "design/Design.h"

#include <algorithm>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

ProbeWalk::Step ProbeWalk::step(ReportedProbe &found)
{
    if (m_probes == nullptr || m_next == m_probes->size()) {
        m_instance = m_walk.next();
        if (m_instance == nullptr) {
            return Step::End;
        }
        m_probes = &probesOf(*m_instance->getModule());
        m_next = 0;
        return Step::Passed;
    }
    const Probe &probe = (*m_probes)[m_next++];
    analysis::SignalReport report = reportOf(*m_instance, probe);
    if (!m_choice.verdicts.has(report.verdict)) {
        return Step::Passed;
    }
    found = {m_instance, &probe, std::move(report)};
    return Step::Found;
}

analysis::SignalReport ProbeWalk::reportOf(const IVDBInstance &instance, const Probe &probe) const
{
    return m_report.of(&instance, probe.bits, probe.item);
}

const std::vector<Probe> &ProbeWalk::probesOf(IVDBNetlist &module)
{
    const auto [probes, isNew] = m_probesOf.try_emplace(&module);
    if (isNew && !m_design.isBlackBox(module)) {
        probes->second = tool::probesOf(m_design, module);
        const auto end = std::remove_if(probes->second.begin(), probes->second.end(), [this](const Probe &probe) {
            return !(m_choice.all || probe.declared) || !m_choice.kinds.has(probe.isBus ? ITEM_NET_BUS : ITEM_NET);
        });
        probes->second.erase(end, probes->second.end());
    }
    return probes->second;
}

} // namespace kvr::netlistdb::tool
