#pragma once

#include "Map.h"

#include <memory>
#include <vector>

namespace Verific {

class Instance;
class Net;
class Netlist;
class Port;
class PortRef;

/// Makes one copy of a netlist. Objects of the copy are found by the slot of their original.
class NetlistCopier {
  public:
    explicit NetlistCopier(const Netlist &source);
    /// The copy; throws std::bad_alloc, leaving nothing behind.
    std::unique_ptr<Netlist> run(Map *copied);

  private:
    void copyPorts();
    void copyPortBuses();
    void copyNets();
    void copyNetBuses();
    void copyInstances();
    void copyPins(const Instance *from, Instance *to);
    void orderPins();

    struct CopiedNet {
        Net *copy = nullptr;
        /// The pin of the original that must come next if its pins are in the order of the instances.
        const PortRef *expected = nullptr;
    };

    const Netlist &m_source;
    std::unique_ptr<Netlist> m_copy;
    std::vector<CopiedNet> m_nets;    ///< by slot of the original
    std::vector<Port *> m_ports;      ///< by slot of the original
    std::vector<const Net *> m_mixed; ///< originals whose pins are in another order, with repetitions
};

} // namespace Verific
