#pragma once

#include <unordered_map>
#include <vector>

namespace Verific {
class Instance;
class Net;
class Netlist;
class Port;
} // namespace Verific

namespace kvr::netlistdb {

/// Finds the clock of an output of a sequential cell, as clockOfOutput does.
///
/// A memo of the clock ports of cell types with many ports: a memory or register file of a hundred thousand outputs is
/// not walked for each. The pins of the cell are looked at anew on each call, and all of them are walked where the
/// order of several clock pins decides. Marking a port of such a type as a clock takes effect with the next import.
class ClockPorts {
  public:
    /// @see clockOfOutput
    bool clockOfOutput(const Verific::Instance *cell, const Verific::Port *drivingPin, const Verific::Net *&clock);
    /// Forgets the cell types, which may be gone.
    void clear() { m_ports.clear(); }

  private:
    const std::vector<const Verific::Port *> &clockPortsOf(const Verific::Netlist &type);

    std::unordered_map<const Verific::Netlist *, std::vector<const Verific::Port *>> m_ports;
};

} // namespace kvr::netlistdb
