#pragma once

#include "analysis/ModelBuilder.h"

#include <string>
#include <string_view>
#include <vector>

/// Cells of devices, and cells of which only the netlist database's own marks are known.
namespace kvr::netlistdb::analysis {

/// Name of the device cell that @p instance is, from its attribute; empty when it has none.
std::string_view deviceCellName(const Verific::Instance &instance);

/// Whether an instance of that device cell is a cell, whatever its view holds.
bool isDeviceCell(std::string_view deviceCell);

/// Builds a cell from what the reader of the netlist wrote beside it: its kind and the roles of its pins; false when
/// the view has no kind.
bool buildDescribedCell(ModelBuilder &cell);

/// Builds a cell of the KVR library, or of another whose instances carry the same marks, from its name; false when
/// neither @p deviceCell nor the cell's own name is one.
bool buildKvrCell(ModelBuilder &cell, std::string_view deviceCell);

/// Builds a cell from its marks in the netlist database: register, primitive, operator, black box.
void buildGenericCell(ModelBuilder &cell);

/// Parameters that change how cells of @p view carry clocks.
std::vector<std::string> deviceParameters(const Verific::Netlist &view);

} // namespace kvr::netlistdb::analysis
