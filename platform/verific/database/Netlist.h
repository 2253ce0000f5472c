#pragma once

#include "DesignObj.h"
#include "Map.h"
#include "ReclaimState.h"
#include "Set.h"

#include <memory>

namespace Verific {

class Cell;
class Instance;
class Net;
class NetBus;
class Port;
class PortBus;

/// Type codes of primitives.
enum primitive_type {
    PRIM_NONE = 0,
    PRIM_PWR = 1,
    PRIM_GND = 2,
    PRIM_X = 3,
    PRIM_Z = 4,
    PRIM_BUF = 5,
    PRIM_INV = 6,
    PRIM_AND = 7,
    PRIM_OR = 8,
    PRIM_XOR = 9,
    PRIM_MUX = 10,
    PRIM_TRI = 11,
    PRIM_OTHER = 12,
};

/// One view of a cell: its ports, nets and instances. Of a black box, only the ports count.
class VERIFIC_EXPORT Netlist : public DesignObj {
  public:
    explicit Netlist(const char *view_name);
    /// Deletes everything in the netlist, takes it out of its cell and its instances out of their views' references;
    /// instances elsewhere that have it as their view keep living, without view and pins. Also deletes the netlists
    /// that lived on only because this one used them (see Libset::Reset and RestoreFromFile).
    ~Netlist() override;

    /// The owning cell; null for a loose netlist or a copy.
    Cell *Owner() const { return m_owner; }
    /// Name of the owning cell, or null.
    const char *CellBaseName() const;

    /// These take ownership; they return 0 (and take nothing) when the object already has an owner.
    unsigned Add(Port *port);
    unsigned Add(PortBus *bus);
    unsigned Add(Net *net);
    unsigned Add(NetBus *bus);
    unsigned Add(Instance *inst);

    /// The object of that name, the first of several; null when there is none. @p case_insensitive must be 0.
    Port *GetPort(const char *name, unsigned case_insensitive = 0) const;
    PortBus *GetPortBus(const char *name) const;
    Net *GetNet(const char *name) const;
    NetBus *GetNetBus(const char *name) const;
    Instance *GetInst(const char *name) const;

    /// The tables themselves, in order of addition. Read only.
    Map *GetPorts() const { return const_cast<Map *>(&m_ports); }
    Map *GetPortBuses() const { return const_cast<Map *>(&m_portBuses); }
    Map *GetNets() const { return const_cast<Map *>(&m_nets); }
    Map *GetNetBuses() const { return const_cast<Map *>(&m_netBuses); }
    Map *GetInsts() const { return const_cast<Map *>(&m_insts); }

    /// The instances that have this netlist as their view.
    Set *GetReferences() const { return const_cast<Set *>(&m_references); }
    unsigned NumOfRefs() const { return m_references.Size(); }

    /// A loose netlist with the same name, flags, position, attributes, ports, buses, nets, instances and connections
    /// in the same order. Views are shared. @p copied, when not null, gains original → copy for every port, net and
    /// instance. The caller owns the copy.
    Netlist *Copy(Map *copied) const;
    /// Inserts this netlist and every netlist below it, each once, breadth first in instance order. With
    /// @p include_leaves 0, operators and primitives are left out.
    void Hierarchy(Set &netlists, unsigned include_leaves) const;

    unsigned IsBlackBox() const { return m_blackBox; }
    unsigned IsRegister() const { return m_register; }
    unsigned IsOperator() const { return m_operator; }
    unsigned IsPrimitive() const { return m_type != PRIM_NONE; }
    /// Type code (primitive_type); 0 for anything but a primitive.
    unsigned Type() const { return m_type; }
    /// Clock port of a register, or null.
    Port *GetClock() const { return m_clock; }
    /// Input port of a one-input primitive, or null.
    Port *GetInput() const { return m_input; }
    /// Marks the netlist as a black box; contents, if it has any, stay.
    void MakeBlackBox() { m_blackBox = true; }

    /// Reads a saved netlist into the global libset and returns its top netlist, or null (leaving the libset as it
    /// was) when the file is missing, damaged, foreign or of a newer version. The top belongs to its cell; deleting it
    /// leaves the netlists below it alive. Once a loose netlist that uses one of these has been deleted, that netlist
    /// is deleted with its last user, and with it the cell that the restore made for it and that is left empty.
    static Netlist *RestoreFromFile(const char *file_name);

    // Embedded database only.
    /// Writes this netlist and everything below it; returns 0 when the file cannot be written whole, leaving any
    /// earlier file of that name as it was.
    unsigned SaveToFile(const char *file_name) const;
    /// @p clock is a port of this netlist, or null; a foreign port counts as null.
    void MakeRegister(Port *clock);
    /// @p type is one of primitive_type; @p input as the clock of MakeRegister.
    void MakePrimitive(unsigned type, Port *input);
    void MakeOperator() { m_operator = true; }
    /// Says that this netlist is needed only until its next Copy(): that call then moves everything in it to the new
    /// netlist instead of making a second one of each object, and leaves this one empty. A netlist that instances refer
    /// to, or whose copies the caller of Copy() wants to know one by one, is copied all the same.
    void SetDisposable(unsigned on) { m_disposable = on != 0; }

  private:
    friend class Cell;
    friend class Instance;
    friend class Library;
    friend class Libset;
    friend class Net;
    friend class NetBus;
    friend class NetlistCopier;
    friend class NetlistReader;
    friend class NetlistReclaimer;
    friend class NetlistWriter;
    template <Netlist *ReclaimState::*> friend class NetlistQueue;
    friend class Port;
    friend class PortBus;

    explicit Netlist(SharedName view_name);
    /// An empty loose netlist with the same name, traits and kind.
    std::unique_ptr<Netlist> makeAlike() const;
    /// A loose netlist with everything that was in this one.
    Netlist *moveContents();
    /// First half of deletion. When many netlists are deleted together, each loses its instances before the first one
    /// loses its nets and ports: what they refer to in one another still exists, and no pin is disconnected by itself.
    void deleteInstances();
    /// Deletes this netlist, and its cell too when that is left empty and was made by a restore.
    void deleteWithCell();
    /// True when it can be found from a libset.
    bool inLibset() const;
    /// True when restored netlists that it uses live only while they are used once it is deleted.
    bool handsOnViews() const;

    Cell *m_owner = nullptr;
    Map m_ports{STRING_HASH};
    Map m_portBuses{STRING_HASH};
    Map m_nets{STRING_HASH};
    Map m_netBuses{STRING_HASH};
    Map m_insts{STRING_HASH};
    Set m_references{POINTER_HASH};
    Port *m_clock = nullptr;
    Port *m_input = nullptr;
    unsigned m_type = PRIM_NONE;
    bool m_blackBox = false;
    bool m_register = false;
    bool m_operator = false;
    bool m_disposable = false;
    bool m_dying = false; ///< set while the netlist is deleted: children need not take themselves out
    ReclaimState m_reclaim;
};

} // namespace Verific
