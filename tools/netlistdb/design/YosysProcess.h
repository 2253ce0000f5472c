#pragma once

#include "design/VerilogSources.h"

#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

class Interrupt;

/// Elaborates Verilog sources with yosys (read, hierarchy, proc, opt_clean) and returns its JSON netlist. Nothing is
/// written to a file.
/// @throws Failure when yosys is not installed or refuses the sources, with what it says and the file that it says it
///         of; without @p top, when several modules could be the top; Interrupted.
std::string elaborateWithYosys(const std::vector<std::string> &sources, const VerilogOptions &options,
                               const std::string &top, Interrupt &interrupt);

/// What messages call @p sources together.
std::string nameOfSources(const std::vector<std::string> &sources);

/// Derives a table of cells from a Verilog file with their models, and writes it to @p table.
/// @throws Failure when python3 or yosys is not installed or the models cannot be read; Interrupted.
void deriveCellTable(const std::string &models, const std::string &table, Interrupt &interrupt);

} // namespace kvr::netlistdb::tool
