#pragma once

#include "design/InstanceWalk.h"
#include "output/RowSource.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb::tool {

class Design;

/// Which part of the instance tree a result shows.
struct TreeChoice {
    std::uint64_t depth = UINT64_MAX; ///< levels below the start
    bool clocks = false;              ///< with the clocks that begin in each instance; needs a design with clocks
    bool userModules = false;         ///< without instances of modules without source position
};

/// The instance tree from the top down, a row for each instance.
class TreeWalk : public RowSource {
  public:
    /// Begins with @p start, an instance of @p design, which must outlive the object.
    TreeWalk(Design &design, IVDBInstance &start, const TreeChoice &choice);

    std::vector<Column> columns() const override;
    bool step(ResultWriter &writer) override;
    /// Goes on to the next instance without a row for this one.
    void pass();

  private:
    Design &m_design;
    TreeChoice m_choice;
    InstanceWalk m_walk;
    std::unordered_map<const IVDBInstance *, std::vector<std::string>> m_clocksOf;
};

} // namespace kvr::netlistdb::tool
