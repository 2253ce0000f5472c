#pragma once

#include "DesignObj.h"
#include "PortRef.h"

namespace Verific {

class Net;
class Netlist;
class ParamTable;
class PinBlock;
class PinIndex;
class Port;

/// One use of a netlist (its view) inside another.
class VERIFIC_EXPORT Instance : public DesignObj {
  public:
    /// @p view may be null.
    Instance(const char *name, Netlist *view);
    /// Disconnects every pin and leaves the view's references. A view that lived on only because this instance used it
    /// is deleted.
    ~Instance() override;

    Netlist *View() const { return m_view; }
    Netlist *Owner() const { return m_owner; }
    /// Connects the pin of @p port, a port of the view, to @p net of the same netlist: both the instance and the net
    /// must have been added to it. A pin that is connected elsewhere is disconnected first and then counts as connected
    /// last; a pin that is on @p net already stays as it is. A null net only disconnects. Returns 1 when the pin is on
    /// @p net afterwards, and 0, changing nothing, for a port or net that does not belong there.
    unsigned Connect(const Port *port, Net *net);
    /// Disconnects the pin of @p port; returns 1 when it was connected.
    unsigned Disconnect(const Port *port);
    /// The net on the pin of @p port, or null. Constant time when the pins were connected in the order of the ports;
    /// otherwise a search through the pins, with an index when there are more than a few dozen.
    Net *GetNet(const Port *port) const;
    /// Type code of the view (0 without one).
    unsigned Type() const;
    unsigned IsOperator() const;
    unsigned IsPrimitive() const;
    /// Parameters by name (texts to texts), or null when there are none. Read only: owned by the instance.
    virtual Map *GetParameters() const;

    // Embedded database only.
    /// Adds a parameter, both texts copied; an existing key takes the new value.
    void AddParam(const char *key, const char *value);
    /// Takes the parameters of @p other instead of its own. Both hold them together until one adds another.
    void ShareParams(const Instance &other);

    /// Steps FOREACH_PORTREF_OF_INST.
    bool nextPortRef(MapIter &iter, PortRef *&ref) const;
    unsigned NumOfPortRefs() const { return m_pinCount; }
    /// Makes room for @p count pins in all, contiguously. For builders that know the number.
    void reservePins(unsigned count);

  private:
    friend class Net;
    friend class Netlist;
    friend class NetlistCopier;
    friend class NetlistReader;
    friend class NetlistWriter;
    friend class Port;

    Instance(SharedName name, Netlist *view);
    PortRef *findPin(const Port *port) const;
    /// The pin connected last, or null.
    PortRef *lastPin() const;
    /// A place for one more pin after the others; takePin() puts it in use.
    PortRef *spacePin();
    void takePin(PortRef *pin, const Port *port, Net *net);
    /// Connects a pin after the others in the one block that reservePins() made. For builders that know that the port
    /// is not connected.
    void appendPin(Port *port, Net *net);
    /// Position of @p pin among the connected and disconnected pins.
    std::uint64_t placeOf(const PortRef *pin) const;
    void dropPin(PortRef *pin);
    void dropPins();
    void freeBlocks();
    void indexPins() const;

    bool m_pinsMixed = false;        ///< some pin was connected after the pin of a later port
    std::uint16_t m_pinCapacity = 0; ///< of the only block of pins, which is then freed unread; 0: the blocks tell
    Netlist *m_owner = nullptr;
    Netlist *m_view = nullptr;
    ParamTable *m_params = nullptr;         ///< shared between copies; null when there are none
    PinBlock *m_pins = nullptr;             ///< pins in order of connection, in blocks that never move
    mutable PinIndex *m_pinIndex = nullptr; ///< made by the first look-up among very many pins
    unsigned m_viewSlot = Map::NO_SLOT;     ///< place in the view's references
    unsigned m_pinCount = 0;
};

/// Called by the loop macros.
namespace loops {

/// Step of FOREACH_PORTREF_OF_INST that takes a null instance as one without pins.
inline bool nextPortRefOf(const Instance *inst, MapIter &iter, PortRef *&ref)
{
    return inst != nullptr && inst->nextPortRef(iter, ref);
}

/// Parameters of an instance that may be null.
inline const Map *parametersOf(const Instance *inst)
{
    return inst != nullptr ? inst->GetParameters() : nullptr;
}

} // namespace loops
} // namespace Verific

/// Loops over the connected pins of an instance in order of connection: `MapIter mi; PortRef *ref;`. Disconnecting the
/// pin that the loop is at is safe; connecting pins of this instance is not.
#define FOREACH_PORTREF_OF_INST(inst, mi, ref)                                                                         \
    for ((mi).start(nullptr); ::Verific::loops::nextPortRefOf((inst), (mi), (ref));)

/// Loops over the parameters of an instance: `MapIter mi; const char *key, *value;`.
#define FOREACH_PARAMETER_OF_INST(inst, mi, key, value)                                                                \
    FOREACH_MAP_ITEM (::Verific::loops::parametersOf(inst), mi, &(key), &(value))
