#pragma once

#include "Design.h"

namespace Verific {
class Netlist;
}

namespace kvr::netlistdb::bench {

/// Builds the design in the global libset, without a detour over a file: modules in library "work", operators and
/// registers in "Operators". Returns the top netlist, which belongs to its cell. The libset should be empty.
Verific::Netlist *buildNetlist(const Design &design);

} // namespace kvr::netlistdb::bench
