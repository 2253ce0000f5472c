#pragma once

// The questions to the netlist database whose exact member is our choice, one function each.

#include <cstdint>

namespace Verific {
class Instance;
class Net;
class Netlist;
class Port;
class PortBus;
} // namespace Verific

namespace kvr::netlistdb::verific_queries {

/// Number of bits of a net: 1, or the bits of the whole memory that the net represents.
std::uint32_t widthOf(const Verific::Net &net);

/// Number of bits of a port bus, those included that no port was made for.
std::uint32_t widthOf(const Verific::PortBus &portBus);

/// True for a net that must not be offered to an on-chip debugger: one that represents a whole memory, which is no wire
/// that a probe could sample.
bool mustNotBeProbed(const Verific::Net &net);

/// Name of the cell that owns the netlist; null when there is no cell or it has no name.
const char *cellName(const Verific::Netlist &netlist);

/// Name of the library of the cell that owns the netlist; null when one of them is missing or has no name.
const char *libraryName(const Verific::Netlist &netlist);

/// Number of parameters given to an instance.
std::uint32_t parameterCount(const Verific::Instance &instance);

/// True for the netlist of a register, a cell that holds state and has a clock port.
bool isRegister(const Verific::Netlist &netlist);

/// Clock port of the netlist of a register; null when it has none.
const Verific::Port *clockPort(const Verific::Netlist &netlist);

/// True for the netlist of a buffer (primitive type code 5): its output follows its one input.
bool isBuffer(const Verific::Netlist &netlist);

/// Input port of the netlist of a one-input primitive; null when it has none.
const Verific::Port *inputPort(const Verific::Netlist &netlist);

/// True when the instance tree goes on below an instance of this netlist: it is a module of the user's, neither a black
/// box nor one of the generic cells.
bool mayDescend(const Verific::Netlist &netlist);

/// True for the generic cells of the elaborator, told by their library: "Operators" or "Primitives".
bool isGenericCell(const Verific::Netlist &netlist);

/// Net inside the netlist that a port of it meets, or null.
const Verific::Net *innerNet(const Verific::Port &port);

} // namespace kvr::netlistdb::verific_queries
