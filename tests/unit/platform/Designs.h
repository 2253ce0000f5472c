#pragma once

#include <string>

namespace Verific {
class Instance;
class Net;
class Netlist;
class Port;
} // namespace Verific

namespace platformtest {

/// A netlist in a cell of the global libset; library and cell are made if need be.
Verific::Netlist *makeNetlist(const char *library, const char *cell, const char *view = "netlist");

/// Objects made and added to @p netlist.
Verific::Port *addPort(Verific::Netlist *netlist, const char *name, unsigned dir);
Verific::Net *addNet(Verific::Netlist *netlist, const char *name);
Verific::Instance *addInstance(Verific::Netlist *netlist, const char *name, Verific::Netlist *view);

/// A two-input gate with ports a, b (in), z (inout) and y (out).
Verific::Netlist *makeGate(const char *cell = "gate");

/// A small design in which every kind of object, flag, order and connection occurs. Returns its top.
Verific::Netlist *makeEverything();

/// Names of what a walk over the references, pins or ports meets, separated by blanks.
std::string pinsOf(const Verific::Instance *inst);
std::string loadsOf(const Verific::Net *net);
std::string portsOf(const Verific::Net *net);
std::string referencesOf(const Verific::Netlist *netlist);

} // namespace platformtest
