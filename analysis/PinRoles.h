#pragma once

#include "analysis/ModelBuilder.h"

#include <string>
#include <string_view>
#include <vector>

namespace kvr::netlistdb::analysis {

/// Gives every input of a register its role: the one that its port is marked with, otherwise the one that its name
/// says by custom.
void markControlPins(ModelBuilder &cell);

/// Whether the port of @p pin is marked as a clock that clocks something.
bool isMarkedAsClock(const ModelBuilder &cell, std::uint32_t pin);
/// Whether the port of @p pin is described as a clock, in use or not.
bool isDescribedAsClock(const ModelBuilder &cell, std::uint32_t pin);
/// Whether the port of @p pin is described as one that a read without a clock begins at.
bool isDescribedAsRead(const ModelBuilder &cell, std::uint32_t pin);
/// The edges on which the clock pin @p pin acts, as its port and the parameters of the instance say; otherwise a rising
/// one.
std::uint8_t edgesOf(const ModelBuilder &cell, std::uint32_t pin);

/// Names of the parameters that turn round the edges of clock pins of @p view, as its ports say.
std::vector<std::string> invertingParameters(const Verific::Netlist &view);

/// Whether a pin called @p pin belongs to the side of a cell whose clock pin is called @p clock, as the names of the
/// two say: `W_DATA` to `W_CLK`, `ADDR_A` to `CLK_A`, `RADDR` to `RCLK`.
bool isOnSideOf(std::string_view pin, std::string_view clock);

} // namespace kvr::netlistdb::analysis
