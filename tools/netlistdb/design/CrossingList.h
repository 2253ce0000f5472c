#pragma once

#include "design/ClockFilter.h"
#include "design/CrossingChoice.h"
#include "design/CrossingRows.h"
#include "design/CrossingTotals.h"
#include "design/SourceText.h"
#include "output/RowSource.h"

#include <cstddef>
#include <string>

namespace kvr::netlistdb::tool {

/// The crossings of a design that were asked for.
class CrossingList : public RowSource {
  public:
    /// @p rows are of the crossings of @p clocks, made with CrossingChoice::rows() of @p choice; both must outlive the
    /// object.
    /// @throws Failure when the choice names a clock that there is not.
    CrossingList(const CrossingRows &rows, const analysis::ClockMap &clocks, const CrossingChoice &choice);

    std::vector<Column> columns() const override;
    bool step(ResultWriter &writer) override;
    /// What there is to say of all of them. Looks at every row.
    CrossingTotals totals() const;

  private:
    bool isBetween(const CrossingRow &row) const;
    bool isChosen(const CrossingRow &row) const;
    bool isShown(const CrossingRow &row) const;
    void write(const CrossingRow &row, ResultWriter &writer) const;

    const CrossingRows &m_rows;
    const analysis::ClockMap &m_clocks;
    CrossingChoice m_choice;
    ClockFilter m_from;
    ClockFilter m_to;
    std::size_t m_next = 0;
    std::string m_directory = workingDirectory();
};

} // namespace kvr::netlistdb::tool
