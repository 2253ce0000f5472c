#pragma once

#include "design/CrossingRules.h"

#include <cstdint>
#include <map>
#include <netlistdb/analysis/Crossings.h>
#include <string>
#include <utility>
#include <vector>

namespace kvr::netlistdb::tool {

/// Crossings of the bits of one vector that are alike.
struct CrossingRow {
    const analysis::Crossing *first;
    analysis::CrossingClass kind;
    const CrossingRules::Waiver *waiver; ///< null: not waived
    std::vector<int> fromBits;
    std::vector<int> toBits;
    std::uint64_t bits = 0;   ///< number of crossings
    std::uint32_t cells = 0;  ///< of the shortest way of all
    std::uint32_t stages = 0; ///< of the shortest synchronizer of all

    std::string from() const;
    std::string to() const;
};

/// Puts crossings together, in the order in which they come.
class CrossingRows {
  public:
    /// @p byBit: one row for each.
    explicit CrossingRows(bool byBit) : m_byBit(byBit) {}
    void add(const analysis::Crossing &crossing, analysis::CrossingClass kind, const CrossingRules::Waiver *waiver);
    std::vector<CrossingRow> &rows() { return m_rows; }

  private:
    bool m_byBit;
    std::vector<CrossingRow> m_rows;
    std::map<std::vector<std::string>, std::size_t> m_places;
};

/// How many crossings there are between two clocks.
struct CrossingCounts {
    std::uint64_t safe = 0;
    std::uint64_t warning = 0;
    std::uint64_t unsafe = 0;
    std::uint64_t waived = 0;
    void add(const analysis::Crossing &crossing, bool isWaived);
};

} // namespace kvr::netlistdb::tool
