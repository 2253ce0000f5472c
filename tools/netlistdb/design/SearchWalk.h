#pragma once

#include "design/Kinds.h"
#include "design/NameSearch.h"
#include "output/RowSource.h"

#include <cstdint>

namespace kvr::netlistdb::tool {

class Design;
class NamePattern;

/// Rows of what a search by name finds.
class SearchWalk : public RowSource {
  public:
    /// @p param says where to start, what to leave out and in which order. @p design and @p pattern must outlive the
    /// object. Ends after @p limit rows.
    SearchWalk(Design &design, const VDBSearchParam &param, const NamePattern &pattern, const Kinds &kinds,
               std::uint64_t limit = UINT64_MAX);

    std::vector<Column> columns() const override;
    bool step(ResultWriter &writer) override;
    /// Ends the walk. From any thread.
    void cancel() { m_search.cancel(); }
    /// Rows written.
    std::uint64_t found() const { return m_found; }
    /// True when the limit ended the walk.
    bool isAtLimit() const { return m_found == m_limit; }

  private:
    void writeInstance(ResultWriter &writer);
    void write(ResultWriter &writer);

    Design &m_design;
    NameSearch m_search;
    std::uint64_t m_limit;
    std::uint64_t m_found = 0;
};

} // namespace kvr::netlistdb::tool
