#pragma once

#include "CellType.h"
#include "LooseDesign.h"

#include <functional>
#include <optional>
#include <string_view>

/// What is known of the cells that yosys defines itself: word-level ones (`$add`, `$dff`, …) and one-bit gates
/// (`$_AND_`, `$_DFF_P_`, …).
namespace kvr::netlistdb::yosys {

/// Value of a parameter as written in the file, empty when the cell has none of that name.
using ParameterLookup = std::function<std::string_view(std::string_view name)>;

struct CellMeaning {
    Home home = Home::Operators;
    /// primitive_type of a primitive; 0 for an operator.
    unsigned primitive = 0;
    /// The input that a buffer or inverter passes on; empty otherwise.
    std::string_view input;
    /// The port that clocks a register, empty when the cell is none.
    std::string_view clock;
    /// Set for whole memories of which some port is clocked.
    std::optional<MemoryPorts> memory;
};

/// True for the names of cells that yosys defines itself.
inline bool isInternalCell(std::string_view type)
{
    return !type.empty() && type.front() == '$';
}

/// True for the types of cells that are none of the design: scopes, timing, and checks that simulators and proofs make.
bool isAnnotation(std::string_view type);

/// What the internal cell @p type with these parameters is to the netlist database.
///
/// - Gates (`$_…_`) are primitives; word-level cells are operators, except for one-bit buffers (`$pos`, `$buf`), which
///   are primitives like `$_BUF_`.
/// - Flip-flops of every kind, `$fsm`, and memory ports that are clocked are registers. Latches are not: a latch is
///   transparent while it is enabled, and its enable is no clock. Flip-flops on the global clock (`$ff`, `$_FF_`) have
///   no clock port and are not registers either.
/// - Of `$mem` and `$mem_v2` each clocked read port is a register of its own (CellMeaning::memory); the outputs of a
///   read port without a clock depend on its address at any time, as those of an operator do.
CellMeaning meaningOf(std::string_view type, const ParameterLookup &parameter);

/// The direction of port @p port of internal cell @p type (port_direction), for files that do not say; DIR_NONE when
/// the cell is not known.
unsigned directionOf(std::string_view type, std::string_view port);

/// True when the value of a parameter or attribute is a number other than zero, in decimal or in bits.
bool isNonZero(std::string_view value);

} // namespace kvr::netlistdb::yosys
