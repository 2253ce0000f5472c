#pragma once

#include "design/ClockTree.h"
#include "design/SourceText.h"
#include "output/RowSource.h"

#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

class Design;

/// Every clock of a design, as the clock tree has them, with what it clocks.
class ClockRows : public RowSource {
  public:
    /// @p design has clocks; @p counts are those of its clock map. Both must outlive the object.
    ClockRows(Design &design, const analysis::NetCounts &counts);

    std::vector<Column> columns() const override;
    bool step(ResultWriter &writer) override;

  private:
    void write(const ClockTreeLine &line, ResultWriter &writer) const;

    Design &m_design;
    const analysis::NetCounts &m_counts;
    std::vector<ClockTreeLine> m_lines;
    std::size_t m_next = 0;
    std::string m_directory = workingDirectory();
};

} // namespace kvr::netlistdb::tool
