#pragma once

#include "analysis/Hierarchy.h"
#include "analysis/Lists.h"
#include "analysis/probe/RecipeTable.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kvr::netlistdb {
class DesignDatabase;
}

namespace kvr::netlistdb::analysis::probe {

/// A wire of the unfolded design: all nets that ports and buffers join.
using Signal = std::uint32_t;
constexpr Signal SIGNAL_ZERO = 0;
constexpr Signal SIGNAL_ONE = 1;
constexpr Signal SIGNAL_UNKNOWN = 2; ///< what nothing drives, or several drive
constexpr Signal FIRST_SIGNAL = 3;

/// One occurrence of a module in the unfolded design.
struct Occurrence {
    std::uint32_t module;   ///< place in Hierarchy::modules
    std::uint32_t parent;   ///< NONE for the top
    std::uint32_t sub;      ///< place among the instances of the parent's module
    std::uint32_t firstNet; ///< place of its first net among all
};

/// A part of a cell of an occurrence.
struct Node {
    std::uint32_t recipe;
    std::uint32_t part;
    std::uint32_t occurrence;
    std::uint32_t cell;
    std::uint32_t firstPin; ///< in BitGraph::pins: its inputs, then its outputs
    std::uint32_t firstOutput;
    std::uint32_t endPin;
    std::uint32_t state; ///< of shift registers: first word of the state; of memory parts: number of the memory
};

/// A node with what is looked up for it all the time.
struct Step {
    const Node *node;
    const Part *part;
    Span<Signal> in;
    Span<Signal> out;
};

struct Memory {
    std::uint32_t width;
    std::uint32_t addressBits;
    std::uint32_t occurrence;
    std::uint32_t cell;
    const MemoryShape *shape; ///< of the first part that named it
    std::size_t words() const { return std::size_t{1} << addressBits; }
};

/// A cell of which only the pins are known.
struct OpaqueCell {
    std::uint32_t occurrence;
    std::uint32_t cell;
};

struct TopPort {
    std::string name;
    Signal signal;
    bool isInput;
    bool isOutput;
};

/// One source netlist, unfolded, as wires and parts of cells.
class BitGraph {
  public:
    /// @p source must be loaded, with its netlists kept.
    BitGraph(const DesignDatabase &database, IDesignDatabase::SOURCE_TYPE source);

    const DesignDatabase &database;
    IDesignDatabase::SOURCE_TYPE source;
    Hierarchy hierarchy;
    RecipeTable recipes;
    std::vector<Occurrence> occurrences;   ///< the top first
    std::vector<std::uint32_t> firstChild; ///< by occurrence: number of the first below it; children stand together
    std::vector<Signal> signals;           ///< by net
    std::uint32_t signalCount = 0;
    std::vector<Node> nodes;
    std::vector<Signal> pins;
    std::vector<Memory> memories;
    std::size_t stateWords = 0; ///< of shift registers
    std::vector<OpaqueCell> opaque;
    std::vector<TopPort> ports;
    std::vector<std::pair<Signal, bool>> starts; ///< values of registers before the first clock
    std::vector<std::uint32_t> drivers;          ///< by signal: the node whose output it is, NONE for none
    std::vector<bool> external;                  ///< by signal: what an inout port of the top is on

    const ModuleGraph &moduleOf(std::uint32_t occurrence) const
    {
        return hierarchy.modules[occurrences[occurrence].module];
    }
    Signal signalOf(std::uint32_t occurrence, std::uint32_t net) const
    {
        return net == NONE ? SIGNAL_UNKNOWN : signals[occurrences[occurrence].firstNet + net];
    }
    const Recipe &recipeOf(const Node &node) const { return recipes[node.recipe]; }
    const Part &partOf(const Node &node) const { return recipes[node.recipe].parts[node.part]; }
    Span<Signal> inputsOf(const Node &node) const
    {
        return {pins.data() + node.firstPin, pins.data() + node.firstOutput};
    }
    Span<Signal> outputsOf(const Node &node) const
    {
        return {pins.data() + node.firstOutput, pins.data() + node.endPin};
    }
    Step stepOf(std::uint32_t node) const
    {
        const Node &own = nodes[node];
        return {&own, &partOf(own), inputsOf(own), outputsOf(own)};
    }
    /// Whether a clock changes the wire.
    bool isRegister(Signal signal) const
    {
        return drivers[signal] != NONE && !partOf(nodes[drivers[signal]]).isLogic();
    }
    std::uint32_t recipeOf(std::uint32_t occurrence, std::uint32_t cell) const
    {
        return m_cellRecipes[occurrences[occurrence].module][cell];
    }
    const Verific::Instance &instanceOf(std::uint32_t occurrence, std::uint32_t cell) const
    {
        return *m_instances[occurrences[occurrence].module][cell];
    }
    /// The instance of an occurrence other than the top.
    const Verific::Instance &instanceOf(std::uint32_t occurrence) const;
    /// Names from the top down, joined with "/", with that of a cell at the end.
    std::string pathOf(std::uint32_t occurrence) const;
    std::string pathOf(std::uint32_t occurrence, std::uint32_t cell) const;

  private:
    friend class Flattener;
    std::vector<std::vector<std::uint32_t>> m_cellRecipes;           ///< by module and cell; NONE for modules
    std::vector<std::vector<const Verific::Instance *>> m_instances; ///< by module and cell
};

} // namespace kvr::netlistdb::analysis::probe
