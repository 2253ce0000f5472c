#pragma once

#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

class Interrupt;

/// Elaborates Verilog sources with yosys (read, hierarchy, proc, opt_clean) and writes its JSON netlist to @p json.
/// Without @p top yosys chooses the top module.
/// @throws Failure when yosys is not installed or refuses the sources, with what it says; Interrupted.
void elaborateWithYosys(const std::vector<std::string> &sources, const std::string &top, const std::string &json,
                        Interrupt &interrupt);

/// Derives a table of cells from a Verilog file with their models, and writes it to @p table.
/// @throws Failure when python3 or yosys is not installed or the models cannot be read; Interrupted.
void deriveCellTable(const std::string &models, const std::string &table, Interrupt &interrupt);

} // namespace kvr::netlistdb::tool
