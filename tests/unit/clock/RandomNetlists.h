#pragma once

#include <DataBase.h>

#include <random>
#include <vector>

namespace clock_test {

/// Makes netlists with everything in them that a clock trace has to cope with: several drivers of a net and none,
/// loops, cells of unknown type, black boxes with and without contents, instances without view, modules shared by many
/// parents, nets that leave through several ports, duplicate and missing names, ports of every direction, open pins.
///
/// The netlists stand in the global library set. The same seed makes the same netlists.
class RandomNetlists {
  public:
    explicit RandomNetlists(unsigned seed) : m_random(seed) {}

    /// A top of device cells, mostly flat, at times with instances of modules.
    Verific::Netlist *postMap();
    /// A hierarchy of modules down to generic cells.
    Verific::Netlist *elaborated();

    unsigned below(unsigned bound) { return static_cast<unsigned>(m_random() % bound); }
    bool chance(unsigned percent) { return below(100) < percent; }

  private:
    struct Cell {
        Verific::Netlist *netlist;
        std::vector<const char *> types; ///< to choose the device type of an instance from; null: none
        unsigned weight;
    };
    using Cells = std::vector<Cell>;

    Cells deviceCells();
    Cells genericCells();
    Verific::Netlist *module(const char *library, const Cells &cells, unsigned nets, unsigned instances);
    /// A module that holds @p inner, each of its ports passed on; a few have a cell besides.
    Verific::Netlist *wrapped(Verific::Netlist *inner, const Cells &cells);
    void fill(Verific::Netlist *netlist, const Cells &cells, unsigned nets, unsigned instances);
    std::vector<Verific::Net *> addNets(Verific::Netlist *netlist, unsigned count);
    void addPorts(Verific::Netlist *netlist, const std::vector<Verific::Net *> &nets);
    void addInstance(Verific::Netlist *netlist, const std::vector<Verific::Net *> &nets, const Cells &cells,
                     unsigned number);

    std::mt19937 m_random;
    unsigned m_made = 0;
};

} // namespace clock_test
