#pragma once

#include <bitset>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb::yosys {

class CellType;

/// Recognises names that no user wrote although they are not hidden: those that synthesis derived from names of the
/// user.
///
/// A wire at pin `I3` of the cell that drives `count` is called `count_SB_LUT4_O_I3`: a net, the type and the port of
/// the cell that it names, and a port of that cell; the cells behind it go on in the same way. Place and route tools
/// put `$nextpnr_…` and the like behind a name. The RAMs that hold memory `regs` are called `regs.0.0`, and the wires
/// at their ports `regs.0.0_DO`. Netlists that went through a format without hidden names begin them with `_auto_`, or
/// number them: `_042_`.
class DerivedNames {
  public:
    /// Adds a cell type of the device with its ports. @p type must outlive the object.
    void addCellType(CellType &type);

    bool contains(std::string_view name) const;

  private:
    bool namesPin(std::string_view name, std::size_t typeAt) const;

    std::unordered_map<std::string_view, CellType *> m_types;
    std::size_t m_longest = 0;
    std::bitset<256> m_initials; ///< of the types
};

} // namespace kvr::netlistdb::yosys
