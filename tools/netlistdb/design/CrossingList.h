#pragma once

#include "design/CrossingChoice.h"
#include "design/CrossingRows.h"
#include "design/SourceText.h"
#include "output/Json.h"
#include "output/RowSource.h"

#include <map>
#include <optional>
#include <string>
#include <utility>

namespace kvr::netlistdb::tool {

/// The crossings of a design that were asked for, bits of one vector together, and how many there are between each two
/// clocks.
class CrossingList : public RowSource {
  public:
    /// @p crossings are those of @p clocks; they and @p rules must outlive the object.
    /// @throws Failure when the choice names a clock that there is not.
    CrossingList(const analysis::Crossings &crossings, const analysis::ClockMap &clocks, CrossingRules &rules,
                 const CrossingChoice &choice);

    std::vector<Column> columns() const override;
    bool step(ResultWriter &writer) override;
    bool empty() { return m_rows.rows().empty(); }
    /// The pairs of clocks, each with its numbers of crossings.
    Json summary() const;
    /// Number of crossings that are waived, shown or not.
    std::uint64_t waived() const { return m_waivedCount; }
    /// True when there is a crossing that the choice calls a failure.
    bool hasFailed() const { return m_failed; }

  private:
    void take(const analysis::Crossing &crossing, analysis::CrossingClass kind, const CrossingRules::Waiver *waiver);
    void write(const CrossingRow &row, ResultWriter &writer) const;

    const analysis::ClockMap &m_clocks;
    CrossingChoice m_choice;
    CrossingRows m_rows;
    std::map<std::pair<std::optional<analysis::ClockId>, analysis::ClockId>, CrossingCounts> m_counts;
    std::uint64_t m_waivedCount = 0;
    bool m_failed = false;
    std::size_t m_next = 0;
    std::string m_directory = workingDirectory();
};

} // namespace kvr::netlistdb::tool
