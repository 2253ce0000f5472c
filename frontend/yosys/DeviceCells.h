#pragma once

#include "CellTable.h"
#include "CellType.h"
#include "ReadFault.h"

#include <string>
#include <string_view>
#include <vector>

namespace kvr::netlistdb::yosys {

/// A device cell that a black box is.
struct DeviceMatch {
    const CellDescription *cell = nullptr;
    std::string families; ///< every family with such a cell, the one of the description first, blanks between them
    explicit operator bool() const { return cell != nullptr; }
};

/// Recognises device cells among the black boxes of a file.
class DeviceCells {
  public:
    /// @p tables: files with further tables, which count before the built-in ones.
    /// @throws ReadError when one cannot be read or is no table.
    explicit DeviceCells(const std::vector<std::string> &tables);

    /// True when some device cell has this name.
    bool knows(std::string_view name) const;
    /// The device cell @p name whose ports are called @p ports.
    DeviceMatch find(std::string_view name, const std::vector<std::string_view> &ports) const;
    /// The library that a cell of this kind belongs to: what analyses look through is kept with the primitives.
    static Home homeOf(const CellDescription &cell);

    /// Makes @p type, an empty black box, the device cell that was found.
    void adopt(CellType &type, const DeviceMatch &match);
    /// Describes the pins of all device cells, and marks the clock ports of those whose files describe them themselves
    /// and leave that out.
    void finish();

  private:
    CellTable m_own;
    std::vector<CellType *> m_adopted;
};

} // namespace kvr::netlistdb::yosys
