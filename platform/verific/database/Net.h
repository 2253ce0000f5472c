#pragma once

#include "BusElements.h"
#include "DesignObj.h"
#include "PortRef.h"
#include "Set.h"

#include <cstdint>
#include <vector>

namespace Verific {

class Instance;
class NetBus;
class Netlist;
class Port;

/// A wire of a netlist: connects pins of instances and ports of its own netlist.
class VERIFIC_EXPORT Net : public DesignObj {
  public:
    explicit Net(const char *name);
    /// Disconnects everything from the net.
    ~Net() override;

    Netlist *Owner() const { return m_owner; }
    NetBus *Bus() const { return m_bus; }
    /// Instance of the first connected output pin, or null: inout pins and ports of the netlist do not count.
    /// Constant time.
    Instance *Driver() const;
    /// Driven by an instance of type PRIM_PWR.
    unsigned IsPwr() const;
    /// Driven by an instance of type PRIM_GND.
    unsigned IsGnd() const;
    /// More than one output pin and input port drive the net.
    unsigned IsMultipleDriven() const { return m_drivers > 1; }
    /// Connects a port of the same netlist (as Port::Connect does).
    void Connect(Port *port);
    /// Number of bits.
    virtual unsigned Size() const { return 1; }
    /// True for a net that stands for a whole memory.
    virtual unsigned IsRamNet() const { return 0; }
    /// Ports of the netlist that are connected to this net, in order of connection.
    Set *GetPorts() const;
    unsigned NumOfRefs() const { return m_refs; }

    /// Steps FOREACH_PORTREF_OF_NET.
    bool nextPortRef(SetIter &iter, PortRef *&ref) const;

  protected:
    explicit Net(SharedName name);

  private:
    friend class Instance;
    friend class NetBus;
    friend class Netlist;
    friend class NetlistCopier;
    friend class NetlistReader;
    friend class NetlistWriter;
    friend class Port;

    void link(PortRef *ref, bool output);
    void unlink(PortRef *ref, bool output);
    /// For the pins in order of connection, the place of each when they are sorted by instance (in order of addition)
    /// and by pin within the instance.
    std::vector<std::uint32_t> pinRanks() const;
    /// Reorders the pins, which are in that sorted order, into the order that pinRanks() returned.
    void applyPinRanks(const std::vector<std::uint32_t> &ranks);
    /// Returns the port's place among the ports.
    unsigned addPort(Port *port);
    void removePort(unsigned slot, bool input);
    unsigned outputPins() const;

    Netlist *m_owner = nullptr;
    NetBus *m_bus = nullptr;
    PortRef *m_first = nullptr;
    PortRef *m_driver = nullptr; ///< first output pin in order of connection
    Set *m_ports = nullptr;      ///< made with the first port
    unsigned m_refs = 0;
    unsigned m_drivers = 0; ///< output pins and input ports
};

/// A net that stands for a whole memory.
class VERIFIC_EXPORT RamNet : public Net {
  public:
    /// @p bits is the size of the memory in bits. Embedded database only.
    RamNet(const char *name, unsigned bits);
    unsigned Size() const override { return m_bits; }
    unsigned IsRamNet() const override { return 1; }

  private:
    friend class NetlistCopier;
    friend class NetlistReader;

    RamNet(SharedName name, unsigned bits);
    unsigned m_bits;
};

/// A named vector of nets. Bounds are as declared; SetElement decides which bits exist.
class VERIFIC_EXPORT NetBus : public DesignObj {
  public:
    NetBus(const char *name, int left, int right);
    ~NetBus() override;

    int LeftIndex() const { return m_elements.left(); }
    int RightIndex() const { return m_elements.right(); }
    /// True when the indices rise from left to right.
    unsigned IsUp() const { return LeftIndex() < RightIndex(); }
    /// Number of bits that the bounds span.
    unsigned Size() const { return m_elements.size(); }
    /// The net at @p index, or null where unset or out of bounds.
    Net *ElementAtIndex(int index) const { return m_elements.at(index); }
    Netlist *Owner() const { return m_owner; }

    // Embedded database only.
    /// Puts @p net at @p index and sets its Bus(), taking it from any place in a bus where it was; ignored out of
    /// bounds. A null net empties the place.
    void SetElement(int index, Net *net);

    /// Steps FOREACH_NET_OF_NETBUS.
    bool nextNet(MapIter &iter, Net *&net) const { return m_elements.next(iter, net); }

  private:
    friend class Net;
    friend class Netlist;
    friend class NetlistCopier;
    friend class NetlistReader;
    friend class NetlistWriter;

    NetBus(SharedName name, int left, int right);
    void removeElement(Net *net);

    Netlist *m_owner = nullptr;
    BusElements<Net> m_elements;
};

/// Called by the loop macros.
namespace loops {

/// Step of FOREACH_PORTREF_OF_NET that takes a null net as one without pins.
inline bool nextPortRefOf(const Net *net, SetIter &iter, PortRef *&ref)
{
    return net != nullptr && net->nextPortRef(iter, ref);
}

/// Step of FOREACH_NET_OF_NETBUS that takes a null bus as an empty one.
inline bool nextNetOf(const NetBus *bus, MapIter &iter, Net *&net)
{
    return bus != nullptr && bus->nextNet(iter, net);
}

/// Ports connected to a net that may be null.
inline const Set *portsOfNet(const Net *net)
{
    return net != nullptr ? net->GetPorts() : nullptr;
}

} // namespace loops
} // namespace Verific

/// Loops over the pins on a net in order of connection: `SetIter si; PortRef *ref;`. Disconnecting the pin that the
/// loop is at is safe.
#define FOREACH_PORTREF_OF_NET(net, si, ref)                                                                           \
    for ((si).start(nullptr); ::Verific::loops::nextPortRefOf((net), (si), (ref));)

/// Loops over the ports of the netlist that are connected to a net: `SetIter si; Port *port;`.
#define FOREACH_PORT_OF_NET(net, si, port) FOREACH_SET_ITEM (::Verific::loops::portsOfNet(net), si, &(port))

/// Loops over the set nets of a NetBus from left to right: `MapIter mi; Net *net;`.
#define FOREACH_NET_OF_NETBUS(bus, mi, net) for ((mi).start(nullptr); ::Verific::loops::nextNetOf((bus), (mi), (net));)
