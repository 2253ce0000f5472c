#pragma once

#include "SavedColumns.h"
#include "SavedFormat.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace Verific {

class Cell;
class Instance;
class Library;
class Map;
class Net;
class Netlist;
class PortRef;

/// Gathers a netlist and everything below it into the columns of a saved netlist.
class NetlistWriter {
  public:
    explicit NetlistWriter(const Netlist &top);
    /// Returns false when a netlist contains itself. Throws std::bad_alloc, and std::length_error when the design is
    /// too large for the format.
    bool gather();
    void store(saved::SavedNetlist::Builder to);

  private:
    /// Places of the objects of a table: their slots, without the freed ones.
    class Places {
      public:
        Places() = default;
        explicit Places(const Map &table);
        std::uint32_t at(std::uint32_t slot) const { return m_places.empty() ? slot : m_places[slot]; }

      private:
        std::vector<std::uint32_t> m_places; ///< by slot; empty when no slot is freed
    };

    void gatherRows();
    saved::Children children() const;
    void addObject(const DesignObj &object, saved::ObjectColumns &columns);
    void addNetlist(saved::Row row);
    void addPorts(const Netlist &netlist);
    void addPortBuses(const Netlist &netlist, const Places &ports);
    void addNets(const Netlist &netlist, const Places &ports, const Places &nets);
    void addNetBuses(const Netlist &netlist, const Places &nets);
    void addInstances(const Netlist &netlist, const Places &nets);
    saved::Row shapeOf(const Instance &inst);
    void addMixedNets(std::vector<const Net *> &mixed, const Places &nets, std::uint64_t firstRow);
    void addReferences(saved::Row row);
    /// Row of @p netlist plus 1, or 0 when it is not saved.
    saved::Row rowOf(const Netlist *netlist) const;

    const Netlist &m_top;
    std::vector<const Library *> m_libraries;
    std::vector<const Cell *> m_cells;
    std::vector<const Netlist *> m_netlists;
    std::unordered_map<const void *, saved::Row> m_rows; ///< of libraries, cells and netlists, plus 1
    std::vector<Places> m_portPlaces;                    ///< by netlist
    std::vector<Places> m_instancePlaces;
    std::vector<std::uint64_t> m_firstInstance;

    saved::SharedColumns m_shared;
    saved::ObjectColumns m_libraryColumns;
    saved::ObjectColumns m_cellColumns;
    std::vector<std::uint32_t> m_cellLibraries;
    saved::ObjectColumns m_netlistColumns;
    std::vector<std::uint32_t> m_netlistCells;
    std::vector<std::uint8_t> m_netlistFlags;
    std::vector<std::uint32_t> m_netlistTypes;
    std::vector<std::uint32_t> m_netlistClocks;
    std::vector<std::uint32_t> m_netlistInputs;
    std::vector<std::uint32_t> m_portCounts;
    std::vector<std::uint32_t> m_portBusCounts;
    std::vector<std::uint32_t> m_netCounts;
    std::vector<std::uint32_t> m_netBusCounts;
    std::vector<std::uint32_t> m_instanceCounts;
    std::vector<std::uint32_t> m_portNetCounts;
    saved::ObjectColumns m_ports;
    std::vector<std::uint8_t> m_portDirections;
    saved::BusColumns m_portBuses;
    saved::ObjectColumns m_nets;
    std::vector<std::uint32_t> m_memoryNets;
    std::vector<std::uint32_t> m_memoryBits;
    saved::BusColumns m_netBuses;
    std::vector<std::uint32_t> m_portNetPorts;
    std::vector<std::uint32_t> m_portNetNets;
    std::unordered_map<std::u32string, saved::Row> m_shapes; ///< by view and ports
    std::vector<saved::Row> m_latestShape;                   ///< by view: the shape met last, plus 1
    std::vector<std::uint32_t> m_shapeViews;
    std::vector<std::uint32_t> m_shapeSizes;
    std::vector<std::uint32_t> m_shapePorts;
    std::vector<std::uint64_t> m_shapeStarts; ///< where the ports of a shape start
    saved::ObjectColumns m_instances;
    std::vector<std::uint32_t> m_instanceShapes;
    saved::SparseColumn<std::uint32_t> m_instanceParameters;
    std::vector<std::uint32_t> m_pinNets;
    std::vector<std::uint32_t> m_mixedNets;
    std::vector<std::uint32_t> m_mixedRanks;
    std::vector<std::uint32_t> m_mixedViews;
    std::vector<std::uint32_t> m_mixedReferences;
    std::u32string m_shapeKey;               ///< kept for its storage
    std::vector<const PortRef *> m_expected; ///< by slot of the net: the pin to come next in the order of the instances
};

} // namespace Verific
