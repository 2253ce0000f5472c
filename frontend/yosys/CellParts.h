#pragma once

#include "CellPlan.h"
#include "CellViews.h"

#include <string>
#include <vector>

namespace kvr::netlistdb::yosys {

/// Makes the instances of cells that a plan describes.
///
/// A cell with outputs on several clocks becomes several instances: the first has the cell's name, all inputs and the
/// outputs of one clock; each further one is called `name:pin` after its clock pin (`name:comb` for outputs without a
/// clock) and stands for the rest of the outputs. A clock that only writes gets an instance of its own when nothing
/// else in the module is clocked by its net.
class CellParts {
  public:
    explicit CellParts(LooseDesign &design) : m_views(design) {}

    /// Adds the first instance of a cell, not connected yet.
    Verific::Instance *add(Verific::Netlist &netlist, const char *name, CellType &type, const CellPlan &plan);
    /// Connects the instance that add() made, and remembers the further parts. @p nets by pin.
    void connect(Verific::Instance &inst, CellType &type, const CellPlan &plan,
                 const std::vector<Verific::Net *> &nets);
    /// The port of the instance that add() made latest.
    Verific::Port *portOf(unsigned pin) { return m_views.port(*m_view, pin); }
    /// Gives @p inst, a cell of a family whose files name their cells themselves, its name when the file does not.
    void nameCell(Verific::Instance &inst, const CellType &type);

    /// Adds the further parts of the cells of a module that is read to its end.
    void endModule(Verific::Netlist &netlist);
    /// Marks registers, and adds instances for clocks that only write. Call when all modules are read.
    void finish();

  private:
    using Connections = std::vector<std::pair<unsigned, Verific::Net *>>;
    struct FurtherPart {
        Verific::Instance *first;
        CellType *type;
        unsigned clock;
        bool opaque;
        Connections connections;
    };
    struct OtherClock {
        Verific::Netlist *netlist;
        Verific::Instance *first;
        CellType *type;
        unsigned pin;
        Verific::Net *net;
    };

    void addPart(Verific::Netlist &netlist, const FurtherPart &part);
    void connect(Verific::Instance &inst, CellView &view, const Connections &connections);

    CellViews m_views;
    CellView *m_view = nullptr; ///< of the instance that add() made latest
    std::vector<FurtherPart> m_furtherParts;
    std::vector<OtherClock> m_otherClocks;
};

} // namespace kvr::netlistdb::yosys
