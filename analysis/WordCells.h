#pragma once

#include "analysis/ModelBuilder.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The cells that yosys defines: word-level operators and registers (`$add`, `$dff`, …) and one-bit gates (`$_AND_`,
/// `$_DFF_P_`, …).
namespace kvr::netlistdb::analysis {

/// By how many places a shift shifts, to the right when not negative (`$shl`, `$sshl`: to the left); empty when its
/// amount is no constant.
using ConstantShift = std::optional<std::int64_t>;

/// True for operators whose bits depend on the amount that they shift by.
bool isShift(std::string_view type);

/// Every input reaches every output.
void wholeLogic(ModelBuilder &cell);

/// Builds a cell whose type begins with `$` and that holds no state.
void buildWordOperator(ModelBuilder &cell, const ConstantShift &amount);

/// Builds a flip-flop, latch or memory of yosys; false for any other cell.
bool buildWordRegister(ModelBuilder &cell);

/// Parameters that change how a cell of yosys carries clocks.
const std::vector<std::string> &wordParameters();

} // namespace kvr::netlistdb::analysis
