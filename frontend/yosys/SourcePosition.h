#pragma once

#include "LineFile.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace kvr::netlistdb::yosys {

/// One range of a `src` attribute, `file:line.column-line.column`; columns may be missing.
struct SourceRange {
    std::string_view file; ///< as written; views the attribute
    unsigned line = 0;
};

/// Which range of several says where an object is declared, where its hierarchical name does not say: that of a net is
/// the innermost one, its declaration; that of an instance the outermost one, for cells that synthesis put in place of
/// others have the position of their template behind it.
enum class Innermost { No, Yes };

/// Finds in @p src, a list of ranges separated by `|`, the one of the object itself. Returns false when it
/// holds no range.
///
/// A flattened object has the positions of the instances that it came through as well. Yosys keeps the list as a set
/// that turns round at every level: the object's own range, the only one at first, has half of the others in front of
/// it. @p segments is the number of segments of the object's hierarchical name (0: not known), which is the number of
/// ranges then; where they differ, @p innermost decides.
bool ownRange(std::string_view src, std::size_t segments, Innermost innermost, SourceRange &range);

/// Number of segments of an `hdlname`, which are separated by single spaces; 0 for an empty one.
std::size_t segmentsOf(std::string_view hdlName);

/// Turns `src` attributes into source positions of the netlist database.
class SourcePositions {
  public:
    /// Position of ownRange(), or 0 when there is none.
    Verific::linefile_type encode(std::string_view src, std::size_t segments = 0, Innermost innermost = Innermost::Yes);

  private:
    std::string m_file; ///< of the latest call: neighbours in a netlist come from the same file
};

} // namespace kvr::netlistdb::yosys
