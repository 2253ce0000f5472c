#pragma once

#include "analysis/report/NetReasons.h"

#include <netlistdb/analysis/ProbeReport.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace kvr::netlistdb::analysis {

/// Puts the reasons of bits together: one finding for all bits that have the same.
class FindingCollector {
  public:
    void add(std::uint32_t bit, std::vector<NetReason> reasons)
    {
        for (NetReason &reason : reasons) {
            const auto same = std::find_if(m_findings.begin(), m_findings.end(), [&](const ProbeFinding &finding) {
                return finding.reason == reason.reason && finding.bars == reason.bars &&
                       finding.evidence == reason.evidence && finding.instead == reason.instead;
            });
            if (same == m_findings.end()) {
                m_findings.push_back(
                    {reason.reason, reason.bars, {bit}, std::move(reason.evidence), std::move(reason.instead)});
            } else if (same->bits.back() != bit) {
                same->bits.push_back(bit);
            }
        }
    }

    std::vector<ProbeFinding> take()
    {
        std::stable_sort(m_findings.begin(), m_findings.end(), [](const ProbeFinding &a, const ProbeFinding &b) {
            return a.reason != b.reason ? a.reason < b.reason : a.bars && !b.bars;
        });
        return std::move(m_findings);
    }

  private:
    std::vector<ProbeFinding> m_findings;
};

} // namespace kvr::netlistdb::analysis
