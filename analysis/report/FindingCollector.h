#pragma once

#include "analysis/report/NetReasons.h"

#include <netlistdb/analysis/ProbeReport.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace kvr::netlistdb::analysis {

/// Puts the reasons of bits together: one finding for all bits that have the same.
class FindingCollector {
  public:
    void add(std::uint32_t bit, std::vector<NetReason> reasons)
    {
        for (NetReason &reason : reasons) {
            const auto [place, isNew] =
                m_places.try_emplace({reason.reason, reason.bars, reason.evidence, reason.instead}, m_findings.size());
            if (isNew) {
                m_findings.push_back(
                    {reason.reason, reason.bars, {bit}, std::move(reason.evidence), std::move(reason.instead)});
            } else if (std::vector<std::uint32_t> &bits = m_findings[place->second].bits; bits.back() != bit) {
                bits.push_back(bit);
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
    /// Of the findings, by all that they are the same in.
    std::map<std::tuple<ProbeReason, bool, std::string, std::string>, std::size_t> m_places;
};

} // namespace kvr::netlistdb::analysis
