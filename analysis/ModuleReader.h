#pragma once

#include "analysis/CellModels.h"
#include "analysis/ModuleGraph.h"
#include "analysis/PointerIndex.h"

#include <netlistdb/IDesignDatabase.h>

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Verific {
class Instance;
class Net;
class Netlist;
class Port;
} // namespace Verific

namespace kvr::netlistdb {
class DesignDatabase;
class IVDBNet;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::analysis {

/// Numbers the contents of netlists.
class ModuleReader {
  public:
    using ModuleNumbers = std::unordered_map<const Verific::Netlist *, std::uint32_t>;

    /// @p modules: the number of every netlist that is a module with contents. @p items gains the items of all nets.
    ModuleReader(const DesignDatabase &database, IDesignDatabase::SOURCE_TYPE source, const ModuleNumbers &modules,
                 CellModels &models, std::vector<IVDBNet *> &items)
        : m_database(database), m_source(source), m_modules(modules), m_models(models), m_items(items)
    {
    }

    /// Whether the analysis looks into @p instance.
    bool isModule(const Verific::Instance &instance);

    /// Reads module @p number. A module that would contain itself is a black box there.
    ModuleGraph read(const Verific::Netlist &netlist, std::uint32_t number);

  private:
    /// The ports of one view, in the order of their numbers.
    struct PortNumbers {
        std::vector<const Verific::Port *> ports;
        PointerIndex index;
        /// The number of @p port, for which @p guess is a guess.
        std::uint32_t numberOf(const Verific::Port *port, std::uint32_t guess) const;
    };

    void readNets(const Verific::Netlist &netlist);
    void readPorts(const Verific::Netlist &netlist);
    void readCells(const Verific::Netlist &netlist);
    void readCell(const Verific::Instance &instance);
    /// Enters the nets of the pins that were read since the last call.
    void numberPins();
    /// Gives a cell that is the further part of another the nets of the pins that it borrows from the first.
    void joinParts(const Verific::Instance &instance, std::uint32_t cell, const CellModel &model);
    /// Puts aside a port of a memory that is a cell of its own.
    void noteMemoryPort(const Verific::Instance &instance, std::uint32_t cell, const CellModel &model);
    /// Gives the read ports among them the clocks of the write ports of the same memory.
    void connectMemoryPorts();
    void findSources();
    const PortNumbers &portsOf(const Verific::Netlist &view);
    std::uint32_t netOf(const Verific::Net *net) const { return m_netIndex.find(net); }

    const DesignDatabase &m_database;
    IDesignDatabase::SOURCE_TYPE m_source;
    const ModuleNumbers &m_modules;
    CellModels &m_models;
    std::vector<IVDBNet *> &m_items;
    const Verific::Netlist *m_leafView = nullptr; ///< the view of the latest leaf
    std::unordered_map<const Verific::Netlist *, PortNumbers> m_ports;
    const Verific::Netlist *m_lastView = nullptr;
    const PortNumbers *m_lastPorts = nullptr;
    std::vector<const Verific::Net *> m_nets;
    PointerIndex m_netIndex;
    std::vector<const Verific::Net *> m_pinNets;                     ///< of pins whose nets are not numbered yet
    std::vector<std::uint32_t> m_pinPositions;                       ///< of the same pins, among those of all cells
    std::vector<std::pair<std::uint32_t, std::string_view>> m_reads; ///< cell and memory
    std::unordered_map<std::string_view, std::vector<std::uint32_t>> m_writeClocks; ///< by memory: nets
    ModuleGraph m_graph;
    std::uint32_t m_number = 0;
};

} // namespace kvr::netlistdb::analysis
