#pragma once

#include "BusElements.h"
#include "DesignObj.h"
#include "Set.h"

namespace Verific {

class Net;
class Netlist;
class PortBus;

/// Directions of ports and port buses.
enum port_direction { DIR_NONE = 0, DIR_IN = 1, DIR_OUT = 2, DIR_INOUT = 3 };

/// One bit of the interface of a netlist.
class VERIFIC_EXPORT Port : public DesignObj {
  public:
    /// @p dir is one of port_direction.
    Port(const char *name, unsigned dir);
    /// Disconnects the pin of this port on every instance of the netlist.
    ~Port() override;

    unsigned GetDir() const { return m_dir; }
    unsigned IsInput() const { return m_dir == DIR_IN; }
    unsigned IsOutput() const { return m_dir == DIR_OUT; }
    unsigned IsInout() const { return m_dir == DIR_INOUT; }
    PortBus *Bus() const { return m_bus; }
    /// The net inside the netlist, or null.
    Net *GetNet() const { return m_net; }
    /// Connects the port to @p net inside the netlist, leaving any earlier net; null only leaves. Both must have been
    /// added to the same netlist, otherwise nothing happens.
    void Connect(Net *net);
    Netlist *Owner() const { return m_owner; }

  private:
    friend class Instance;
    friend class Net;
    friend class Netlist;
    friend class NetlistCopier;
    friend class NetlistReader;
    friend class NetlistWriter;
    friend class PortBus;

    Port(SharedName name, unsigned dir);

    Netlist *m_owner = nullptr;
    PortBus *m_bus = nullptr;
    Net *m_net = nullptr;
    unsigned m_netSlot = Set::NO_SLOT; ///< place among the net's ports
    unsigned m_dir;
};

/// A vector of ports. Bounds are as declared; SetElement decides which bits exist.
class VERIFIC_EXPORT PortBus : public DesignObj {
  public:
    PortBus(const char *name, int left, int right, unsigned dir);
    ~PortBus() override;

    unsigned GetDir() const { return m_dir; }
    int LeftIndex() const { return m_elements.left(); }
    int RightIndex() const { return m_elements.right(); }
    /// True when the indices rise from left to right.
    unsigned IsUp() const { return LeftIndex() < RightIndex(); }
    /// Number of bits that the bounds span.
    virtual unsigned Size() const;
    /// The port at @p index, or null where unset or out of bounds.
    Port *ElementAtIndex(int index) const { return m_elements.at(index); }
    Netlist *Owner() const { return m_owner; }

    // Embedded database only.
    /// Puts @p port at @p index and sets its Bus(), taking it from any place in a bus where it was; ignored out of
    /// bounds. A null port empties the place.
    void SetElement(int index, Port *port);

    /// Steps FOREACH_PORT_OF_PORTBUS.
    bool nextPort(SetIter &iter, Port *&port) const { return m_elements.next(iter, port); }

  private:
    friend class Netlist;
    friend class NetlistCopier;
    friend class NetlistReader;
    friend class NetlistWriter;
    friend class Port;

    PortBus(SharedName name, int left, int right, unsigned dir);
    void removeElement(Port *port);

    Netlist *m_owner = nullptr;
    BusElements<Port> m_elements;
    unsigned m_dir;
};

/// Called by the loop macros.
namespace loops {

/// Step of FOREACH_PORT_OF_PORTBUS that takes a null bus as an empty one.
inline bool nextPortOf(const PortBus *bus, SetIter &iter, Port *&port)
{
    return bus != nullptr && bus->nextPort(iter, port);
}

} // namespace loops
} // namespace Verific

/// Loops over the set ports of a PortBus from left to right: `SetIter si; Port *port;`.
#define FOREACH_PORT_OF_PORTBUS(bus, si, port)                                                                         \
    for ((si).start(nullptr); ::Verific::loops::nextPortOf((bus), (si), (port));)
