#pragma once

#include "LineFile.h"

#include <string>
#include <string_view>

namespace kvr::netlistdb::yosys {

/// Turns `src` attributes into source positions of the netlist database.
class SourcePositions {
  public:
    /// Position of the first range in @p src, a list `file:line.column-line.column|…` (columns may be missing), or 0
    /// when there is none.
    Verific::linefile_type encode(std::string_view src);

  private:
    std::string m_file; ///< of the latest call: neighbours in a netlist come from the same file
};

} // namespace kvr::netlistdb::yosys
