#pragma once

#include "tests/property/clockmap/ClockCells.h"

#include <map>
#include <random>
#include <vector>

namespace Verific {
class Instance;
class Net;
class Netlist;
class Port;
} // namespace Verific

namespace clockmap_test {

/// The name of a pin in the tables of cells: that of @p port without brackets, so that `A[1]` becomes `A1`.
std::string pinName(const Verific::Port *port);

/// Makes designs of either form with loops, gated, multiplexed and divided clocks, latches, black boxes, inout pads,
/// constants, memories, several drivers, open pins and undriven nets. The same seed makes the same design, in the
/// global library set.
class RandomDesign {
  public:
    RandomDesign(unsigned seed, bool elaborated);

    Verific::Netlist *top() const { return m_top; }
    /// What is known of a leaf cell.
    const CellFacts &factsOf(const Verific::Instance *leaf) const { return m_facts[m_cellOf.at(leaf)]; }
    bool isLeaf(const Verific::Instance *instance) const { return m_cellOf.count(instance) != 0; }

  private:
    unsigned below(unsigned bound) { return static_cast<unsigned>(m_random() % bound); }
    bool chance(unsigned percent) { return below(100) < percent; }
    Verific::Netlist *module(unsigned number, unsigned nets, unsigned instances);
    void addPorts(Verific::Netlist *netlist);
    void addInstance(Verific::Netlist *netlist, unsigned number);
    Verific::Net *anyNet(const Verific::Port *port, unsigned near, bool isClock);

    std::mt19937 m_random;
    std::vector<ClockCell> m_cells;
    std::vector<CellFacts> m_facts;
    std::vector<Verific::Netlist *> m_modules;
    std::map<const Verific::Instance *, std::size_t> m_cellOf;
    std::vector<Verific::Net *> m_nets; ///< of the module being made; the first two are clocks
    Verific::Net *m_power = nullptr;
    Verific::Netlist *m_top = nullptr;
};

} // namespace clockmap_test
