#pragma once

#include "design/Kinds.h"
#include "design/OtherNameHits.h"
#include "output/RowSource.h"

#include <cstdint>
#include <netlistdb/SearchResults.h>
#include <netlistdb/VDBSearchParam.h>
#include <string>

namespace kvr::netlistdb {
class IVDBInstance;
class IVDBItem;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::tool {

class Design;
class NamePattern;

/// Finds instances, nets and buses by their full names, by all names that nets have: level by level; within an instance
/// buses come before nets.
class SearchWalk : public RowSource {
  public:
    /// @p param says where to start, what to leave out and in which order. @p design and @p pattern must outlive the
    /// object. Ends after @p limit rows.
    SearchWalk(Design &design, const VDBSearchParam &param, const NamePattern &pattern, const Kinds &kinds,
               std::uint64_t limit = UINT64_MAX);

    std::vector<Column> columns() const override;
    bool step(ResultWriter &writer) override;
    /// Ends the walk. From any thread.
    void cancel() { m_results.cancel(); }
    /// Rows written.
    std::uint64_t found() const { return m_found; }
    /// True when the limit ended the walk.
    bool isAtLimit() const { return m_found == m_limit; }

  private:
    void meet(IVDBItem &item, ResultWriter &writer);
    void writeInstance(ResultWriter &writer);
    void write(ResultWriter &writer, const OtherNameHit &hit);

    Design &m_design;
    const NamePattern &m_pattern;
    Kinds m_kinds;
    std::uint64_t m_limit;
    SearchResults m_results;
    OtherNameHits m_others;

    std::uint64_t m_found = 0;
    IVDBInstance *m_instance = nullptr; ///< whose nets follow
    std::string m_path;                 ///< of that instance
    std::string m_prefix;               ///< in front of the names of its nets
    std::string m_name;                 ///< full name of the net at hand, in one buffer for all
};

} // namespace kvr::netlistdb::tool
