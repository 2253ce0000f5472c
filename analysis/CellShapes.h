#pragma once

#include "analysis/ModelBuilder.h"

#include <cstdint>
#include <vector>

/// Kinds of cells that devices have, whatever they are called.
namespace kvr::netlistdb::analysis {

/// A cell with the clocks @p clockPins and all that they capture. What they launch is up to the caller.
void buildRegister(ModelBuilder &cell, CellKind kind, const std::vector<std::uint32_t> &clockPins);

/// What comes out of a pad is its pin outside, when that is one of the cell's pins.
void buildPad(ModelBuilder &cell);

/// A buffer or gate of clocks passes on its input called I, or the only one.
void buildClockBuffer(ModelBuilder &cell, CellKind kind);

/// A look-up table of one input is a buffer or an inverter when its two bits say so.
void buildLookUpTable(ModelBuilder &cell);

/// A cell of one input is a buffer or an inverter when its name says so.
void buildLogic(ModelBuilder &cell);

/// A PLL, oscillator or divider: opaque, but for its clock inputs.
void buildClockGenerator(ModelBuilder &cell);

/// A memory without a clock for its outputs: shows at once what its @p read inputs choose, and what is written there.
void buildUnclockedMemory(ModelBuilder &cell, const std::vector<std::uint32_t> &writeClocks, const PinList &read);

} // namespace kvr::netlistdb::analysis
