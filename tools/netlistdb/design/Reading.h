#pragma once

#include "design/Form.h"

#include <optional>
#include <string>

namespace kvr::netlistdb::tool {

class Interrupt;
class Progress;
class Stats;

/// How to read a design, and whom to tell how far it is.
struct Reading {
    std::optional<Form> form; ///< found out from the netlist when not given
    std::string top;          ///< empty: found out from the netlist
    Progress &progress;
    Stats &stats;
    Interrupt &interrupt;
};

} // namespace kvr::netlistdb::tool
