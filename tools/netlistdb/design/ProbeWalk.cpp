#include "design/ProbeWalk.h"

#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

ProbeWalk::Step ProbeWalk::step(ReportedProbe &found)
{
    if (m_probes == nullptr || m_next == m_probes->size()) {
        m_instance = m_walk.next();
        if (m_instance == nullptr) {
            return Step::End;
        }
        m_probes = &m_lists.of(*m_instance->getModule());
        m_next = 0;
        return Step::Passed;
    }
    const Probe &probe = (*m_probes)[m_next++];
    if (!isChosen(probe)) {
        return Step::Passed;
    }
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

bool ProbeWalk::isChosen(const Probe &probe) const
{
    return (m_choice.all || probe.declared) && m_choice.kinds.has(probe.isBus ? ITEM_NET_BUS : ITEM_NET);
}

} // namespace kvr::netlistdb::tool
