#pragma once

#include "Bits.h"
#include "LooseDesign.h"
#include "netlist_building.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb::yosys {

struct CellDescription;

/// The ports of a whole memory (`$mem`, `$mem_v2`).
struct MemoryPorts {
    unsigned reads = 0;
    unsigned writes = 0;
    std::string clockedReads;  ///< '1' for every read port with a clock, the last port first
    std::string clockedWrites; ///< the same for write ports
};

/// A clock pin of a cell type and the output pins that it clocks; all are places in CellType::pins().
struct ClockPin {
    unsigned pin = 0;
    std::vector<unsigned> outputs;
    const struct CellClock *conditions = nullptr; ///< null: always
};

/// The pins of a cell type that matter to clocks.
struct ClockPins {
    std::size_t pinsSeen = 0; ///< pins that the type had when this was found out
    std::vector<ClockPin> clocks;
    std::vector<unsigned> reads; ///< inputs that an output without a clock depends on first, in that order
};

/// What instances of one netlist connect to: its ports, found by the names that the file gives them.
class CellType {
  public:
    /// A port of the file: one bit or a vector.
    struct Group {
        std::string_view raw; ///< name as written between the quotes
        std::string_view name;
        unsigned direction = 0;
        bool widthKnown = false;
        VectorRange range;
        unsigned firstPin = 0;         ///< place of its bit 0 in pins(), once the width is known
        std::uint64_t connectedBy = 0; ///< number of the latest cell that connected it
    };

    static constexpr unsigned NO_MODULE = 0xFFFFFFFFu;

    /// @p module is the number of the module of the file that the type is, NO_MODULE when it is none.
    CellType(std::string_view name, Verific::Netlist *netlist, unsigned module = NO_MODULE)
        : m_name(name), m_netlist(netlist), m_module(module)
    {
    }

    std::string_view name() const { return m_name; }
    Verific::Netlist *netlist() const { return m_netlist; }
    unsigned module() const { return m_module; }
    /// The ports of the netlist, a group's bits side by side from the least significant one on.
    const std::vector<Verific::Port *> &pins() const { return m_pins; }
    std::vector<Group> &groups() { return m_groups; }

    /// Adds a port whose width is not known yet. Returns null when the name is taken.
    Group *declare(std::string_view raw, std::string_view name, unsigned direction);
    /// Makes the port objects of @p group.
    void define(Group &group, const VectorRange &range, CText &scratch);

    /// The port called @p raw between its quotes, or null. @p position is its place among the connections of the cell:
    /// the cells of one type list their ports in the same order, so that the first look mostly finds it.
    Group *find(std::string_view raw, unsigned position)
    {
        if (position < m_usual.size() && m_groups[m_usual[position]].raw == raw) {
            return &m_groups[m_usual[position]];
        }
        return search(raw, position);
    }
    Group *findByName(std::string_view name);

    /// The library of the netlist.
    Home home = Home::Work;
    /// What is known of the device cell that the type is; null when it is none, or a cell of unknown type.
    const CellDescription *device = nullptr;
    /// Set for whole memories.
    std::optional<MemoryPorts> memory;
    ClockPins clockPins;
    /// Instances of the type depend on their connections and parameters: they are made when all of these are known.
    bool isPlanned = false;

  private:
    Group *search(std::string_view raw, unsigned position);

    std::string_view m_name;
    Verific::Netlist *m_netlist;
    unsigned m_module;
    std::vector<Group> m_groups;
    std::vector<Verific::Port *> m_pins;
    std::vector<unsigned> m_usual; ///< the group met latest at each place
    std::unordered_map<std::string_view, unsigned> m_byName;
    std::unordered_map<std::string_view, unsigned> m_byEscapedText;
};

} // namespace kvr::netlistdb::yosys
