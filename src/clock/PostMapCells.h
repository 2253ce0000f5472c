#pragma once

#include <string_view>

namespace Verific {
class Instance;
class Net;
class Port;
} // namespace Verific

namespace kvr::netlistdb {

/// Primitive type of a device cell, or empty when the instance is null or does not name it.
std::string_view deviceCellName(const Verific::Instance *instance);

/// True for a global clock buffer, whose pin "I" carries the clock into the clock network.
bool isClockBuffer(const Verific::Instance *instance);

/// Finds the net on the pin "I" of a clock buffer, null when the pin is open. False when the buffer has no such port.
bool bufferInput(const Verific::Instance *buffer, const Verific::Net *&net);

/// True for the cells that hold state: flip-flops, multipliers and double-data-rate registers by their whole name,
/// memories, DSP blocks and shift registers by how it begins, since these come in several sizes.
bool isSequentialCell(const Verific::Instance *instance);

/// True when @p port is no output and is marked as a clock.
bool isClockPort(const Verific::Port *port);

/// Whether @p port of a sequential cell is the clock of its output @p drivingPin: each side of a memory has a clock of
/// its own, told by the first letter of its pins or, for the dual-port kind, by the last.
bool isClockOf(const Verific::Instance *cell, const Verific::Port *drivingPin, const Verific::Port *port);

/// Finds the net in front of the clock buffer that drives @p net, null when the buffer's input is open; @p net itself
/// when no buffer does. False when the buffer has no input.
bool beforeBuffer(const Verific::Net *net, const Verific::Net *&clock);

/// Finds the clock of the output @p drivingPin of a sequential cell, taken in front of one clock buffer; null when
/// the buffer's input is open. False when no clock pin clocks that output.
bool clockOfOutput(const Verific::Instance *cell, const Verific::Port *drivingPin, const Verific::Net *&clock);

} // namespace kvr::netlistdb
