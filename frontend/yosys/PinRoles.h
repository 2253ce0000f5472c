#pragma once

#include "CellType.h"

namespace kvr::netlistdb::yosys {

/// Marks the ports of a device cell with what its table says of them, for analyses that read the netlist: attribute
/// `NETLISTDB_PIN_ROLE` (`clock-rise`, `clock-fall`, `clock-both`, `enable`, `set`, `reset`, `read`) and, on a clock
/// whose edge parameters turn round, `NETLISTDB_PIN_INVERTED_BY` (`NAME=VALUE|VALUE …`). Call when all widths are
/// known.
void describePins(CellType &type);

} // namespace kvr::netlistdb::yosys
