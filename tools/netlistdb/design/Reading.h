#pragma once

#include "design/Form.h"
#include "design/VerilogSources.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

class Interrupt;
class Progress;
class Stats;

/// How to read a design, and where to report progress.
struct Reading {
    std::optional<Form> form;            ///< found out from the netlist when not given
    std::string top;                     ///< empty: found out from the netlist
    std::vector<std::string> cellTables; ///< tables of cells, or Verilog models to derive them from
    std::string sourceRoot;              ///< where relative source paths begin; empty: the working directory
    const VerilogOptions &verilog;
    std::uint64_t maxInstances; ///< what the unfolded design may hold
    Progress &progress;
    Stats &stats;
    Interrupt &interrupt;
    std::vector<std::string> &notes; ///< lines for standard error, to be written behind the result
};

} // namespace kvr::netlistdb::tool
