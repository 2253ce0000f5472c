#pragma once

#include "analysis/probe/BitGraph.h"
#include "analysis/probe/Lanes.h"

#include <vector>

/// The functions of cells without a clock, on 64 runs at a time.
namespace kvr::netlistdb::analysis::probe {

/// Evaluates a node that is logic and neither latch, memory, shift register nor pad.
void evaluate(const Part &part, Span<Signal> inputs, Span<Signal> outputs, std::vector<Lanes> &values);

} // namespace kvr::netlistdb::analysis::probe
