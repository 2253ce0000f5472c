#pragma once

#include <string>

namespace Verific {
class Netlist;
}

namespace testsupport {

/// The whole of a netlist as text: every object, flag, position, attribute, parameter, order and connection, seen from
/// both sides (pins by instance and by net, ports by netlist and by net). Objects are named by kind and number in order
/// of addition; views by library, cell and name. Two netlists with the same dump cannot be told apart through the
/// database's interface, but for addresses, owner and references. Null gives "null".
std::string dumpNetlist(const Verific::Netlist *netlist);

/// dumpNetlist() of the netlist and of everything below it, breadth first, each with its cell and library and with its
/// references from among these netlists.
std::string dumpHierarchy(const Verific::Netlist *top);

} // namespace testsupport
