#pragma once

#include "design/Form.h"

#include <cstdint>

namespace kvr::netlistdb::tool {

struct SourceNetlist;

/// Instances that the import makes of @p top in @p form, the top itself included. Follows every module once, however
/// often it is instantiated; stays at the largest number where there are more.
std::uint64_t countInstances(const Verific::Netlist &top, Form form);

/// Few modules can unfold to more instances than any machine holds.
/// @throws Failure when @p source unfolds to more than @p most.
void limitInstances(const SourceNetlist &source, std::uint64_t most);

} // namespace kvr::netlistdb::tool
