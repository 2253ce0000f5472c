#pragma once

// Builds netlists from a short text:
//
//     Verific::Netlist *top = netlistFromText(R"(
//         module leaf(in clk, d, out q) at leaf.v:1
//             r: DFF(clk=clk, d=d, q=q)
//         end
//         register DFF(in clk, d, out q) clock=clk end
//         module top(in clk, in [3:0] d, out q) at top.v:1
//             net n at top.v:3
//             bus [1:0] pair protected
//             u1: leaf(clk=clk, d=d[2], q=n) #WIDTH=4
//             u2: KVR_FF(C=clk, D=n, Q=q)
//         end)");
//
// text      = { unit }
// unit      = kind NAME "(" [ port { "," port } ] ")" { trait } { statement } "end"
// kind      = "module" | "blackbox" | "operator" | "primitive" | "register"
// port      = [ "in" | "out" | "inout" | "none" ] [ "[" INT ":" INT "]" ] NAME { trait }
// statement = "net" NAME { trait }
//           | "ram" NAME INT { trait }                                       a net for a memory of so many bits
//           | "bus" "[" INT ":" INT "]" NAME { trait } [ "=" "{" bits "}" ]
//           | "connect" PORT "=" ( NET | "-" )                               the net inside, "-" for none
//           | NAME ":" ( CELL | "?" ) [ "(" [ PIN "=" value { "," PIN "=" value } ] ")" ] { trait }
// value     = NET | BUS | "{" bits "}"                                       the latter two for a pin that is a bus
// bits      = ( NET | "-" ) { "," ( NET | "-" ) }                            left to right, "-" leaves a bit open
// trait     = "@" KEY [ "=" VALUE ] | "#" KEY "=" VALUE | "at" FILE ":" INT | "protected"
//           | "clock"                                    on a port: attribute KVR_ATTRIBUTE_PORT__IS_CLOCK = TRUE
//           | "clock" "=" PORT | "type" "=" INT | "input" "=" PORT           on a unit
//           | "library" "=" LIBRARY | "loose" | "blackbox" | "view" "=" NAME on a unit
//           | "plain"                                    on an instance of KVR_…: without its cell name attribute
//
// NAME is a run of letters, digits and any of _ $ . / \ < > -, and of [ ] after the first character, or any text in
// double quotes, or ! for an object without a name (null). Comments run from // to the end of the line.
//
// - A port without direction takes that of the port before it. A port with bounds becomes a port bus with ports
//   NAME[i]. In a module each port gets a net of its name inside, a port bus also a net bus.
// - "blackbox" marks the netlist; "operator", "primitive" and "register" make what they say, in the libraries
//   "Operators" and "Primitives" (registers too); everything else is in library "work". "type" is the type code of a
//   primitive (12 unless given), "input" the input port of a one-input one. "clock" names a register's clock port.
// - An instance may name any unit of the text, before or behind it, a cell of the global libset, or a KVR_ cell of the
//   table in NetlistText.cpp, and may have no view ("?"). Nets that a pin, a bus or "connect" names and that do not
//   exist are made. Instances of KVR_ cells carry the attribute KVR_ATTRIBUTE_CELL_NAME.
// - "type" and "#" on a bus, net or port are refused, like everything else that means nothing there.

#include <string>
#include <string_view>

namespace Verific {
class Instance;
class Net;
class NetBus;
class Netlist;
class Port;
} // namespace Verific

namespace testsupport {

/// Builds every unit of @p text and returns the last module's netlist. What is not "loose" belongs to the global
/// libset; a loose netlist to the caller.
/// @throws std::invalid_argument "netlist text, line N: ..." when the text is wrong.
Verific::Netlist *netlistFromText(std::string_view text);

/// First netlist of the cell of that name in any library of the global libset.
/// @throws std::invalid_argument when there is none.
Verific::Netlist *netlistOfCell(const char *cell);

// By name, the netlist's first.
// Throw std::invalid_argument when there is none.

Verific::Net *netOf(const Verific::Netlist *netlist, const char *name);
Verific::NetBus *netBusOf(const Verific::Netlist *netlist, const char *name);
Verific::Port *portOf(const Verific::Netlist *netlist, const char *name);
Verific::Instance *instanceOf(const Verific::Netlist *netlist, const char *name);

} // namespace testsupport
