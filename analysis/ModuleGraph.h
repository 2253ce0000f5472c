#pragma once

#include "analysis/CellModel.h"
#include "analysis/Lists.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Verific {
class Instance;
class Net;
class Netlist;
class Port;
} // namespace Verific

namespace kvr::netlistdb::analysis {

/// Where the value of a net comes from: a pin of a cell of the module, or a port of the module.
class NetSource {
  public:
    static NetSource ofPin(std::uint32_t position) { return NetSource(position); }
    static NetSource ofPort(std::uint32_t port) { return NetSource(port | PORT); }
    bool isPort() const { return (m_code & PORT) != 0; }
    /// Of a port: its place among the module's ports.
    std::uint32_t port() const { return m_code & ~PORT; }
    /// Of a pin: its position among the pins of all cells.
    std::uint32_t position() const { return m_code; }

  private:
    static constexpr std::uint32_t PORT = 1U << 30;
    explicit NetSource(std::uint32_t code) : m_code(code) {}
    std::uint32_t m_code;
    friend class NetSources;
};

/// The sources of every net; most nets have one, which takes four bytes.
class NetSources {
  public:
    /// @p all holds the sources net by net.
    explicit NetSources(const Lists<NetSource> &all);
    NetSources() = default;
    Span<NetSource> operator[](std::uint32_t net) const
    {
        const std::uint32_t code = m_first[net].m_code;
        if ((code & SEVERAL) == 0) {
            return {&m_first[net], &m_first[net] + 1};
        }
        return m_several[code & ~SEVERAL];
    }
    std::size_t memory() const { return m_first.capacity() * sizeof(NetSource) + m_several.memory(); }

  private:
    static constexpr std::uint32_t SEVERAL = 1U << 31; ///< or none
    std::vector<NetSource> m_first;
    Lists<NetSource> m_several;
};

/// One pin of one cell of a module.
struct CellPin {
    std::uint32_t cell;
    std::uint32_t pin;
};

/// The contents of one module, by numbers: nets, ports and cells stand in the order of the netlist. Cells are all
/// instances, those of modules included.
class ModuleGraph {
  public:
    struct ModulePort {
        const Verific::Port *port;
        std::uint32_t net; ///< inside, or NONE
        bool isInput;      ///< inout ports are both
        bool isOutput;
    };
    /// An instance of a module with contents.
    struct SubInstance {
        const Verific::Instance *instance;
        std::uint32_t cell;
        std::uint32_t module; ///< place in Hierarchy::modules
    };

    const Verific::Netlist *netlist = nullptr;
    std::uint32_t firstNet = 0; ///< place of the items of its nets in Hierarchy::items
    std::vector<ModulePort> ports;
    std::vector<SubInstance> subs; ///< in the order of their cells
    NetSources sources;
    /// A memory port that reads without a clock, and the net of a clock that writes into the memory through another
    /// cell.
    struct WrittenBy {
        std::uint32_t cell;
        std::uint32_t clockNet;
    };
    std::vector<WrittenBy> writes;      ///< by cell
    std::vector<std::uint32_t> repeats; ///< cells that are further parts of others with the same clock

    std::uint32_t netCount() const { return m_nets; }
    std::uint32_t cellCount() const { return static_cast<std::uint32_t>(m_cells.size()); }
    /// Place in subs of a cell that is an instance of a module, NONE for a leaf.
    std::uint32_t subOf(std::uint32_t cell) const { return isSub(cell) ? m_cells[cell] & ~SUB : NONE; }
    bool isSub(std::uint32_t cell) const { return (m_cells[cell] & SUB) != 0; }
    /// Place in CellModels of a leaf cell.
    std::uint32_t modelOf(std::uint32_t cell) const { return m_cells[cell]; }
    /// The clocks in writes of @p cell.
    Span<WrittenBy> writesOf(std::uint32_t cell) const;
    /// Net on each pin of @p cell, or NONE. A leaf has the pins of its model, an instance of a module those of its
    /// ports.
    Span<std::uint32_t> netsOf(std::uint32_t cell) const
    {
        return {m_pinNets.data() + m_firstPin[cell], m_pinNets.data() + m_firstPin[cell + 1]};
    }
    /// Position of the first pin of @p cell among the pins of all cells.
    std::uint32_t firstPinOf(std::uint32_t cell) const { return m_firstPin[cell]; }
    /// Pins of all cells.
    std::uint32_t pinCount() const { return m_firstPin.back(); }
    /// The pin at a position among all pins.
    CellPin pinAt(std::uint32_t position) const;
    std::size_t memory() const;

  private:
    friend class ModuleReader;
    static constexpr std::uint32_t SUB = 1U << 31;
    static constexpr std::uint32_t BLOCK = 16; ///< pins for which one cell is remembered

    std::uint32_t m_nets = 0;
    std::vector<std::uint32_t> m_cells;
    std::vector<std::uint32_t> m_firstPin; ///< of each cell, and the number of all
    std::vector<std::uint32_t> m_pinNets;
    std::vector<std::uint32_t> m_cellOfBlock; ///< the cell at every 16th pin
};

} // namespace kvr::netlistdb::analysis
