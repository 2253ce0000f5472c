#pragma once

// The generator's own model of a netlist. It shares the words, such as Cell, Module and CellType, and nothing else with
// the netlist database, the readers and the library, which are measured and checked with what it writes.

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kvr::netlistdb::bench {

/// A wire of one bit, counted from 0 in its module.
using Bit = std::uint32_t;

enum class Direction { Input, Output };

/// A line of RTL that an object stands for; file 0 is "none".
struct SourcePosition {
    std::uint32_t file = 0;
    std::uint32_t line = 0;
};

struct PortType {
    std::string name;
    Direction direction;
    unsigned width = 1;
    bool clock = false;
};

/// What a cell is an instance of. Ports stand in the order of declaration.
struct CellType {
    enum class Kind { BlackBox, Operator, Register, Module };

    std::string name;
    Kind kind;
    std::vector<PortType> ports;
    std::vector<std::pair<std::string, std::string>> parameters; ///< the same on every cell of the type, in byte order
    std::size_t module = 0;                                      ///< of a Module: its index in the design
    unsigned initWidth = 0; ///< bits of the parameter INIT that each cell has; 0: none

    std::size_t pinCount() const;
    /// Position of a port's first bit among a cell's pins.
    std::size_t pinOf(const std::string &port) const;
};

struct Cell {
    std::string name; ///< begins with `$` when generated
    std::uint32_t type = 0;
    std::size_t firstPin = 0; ///< its pins are the bits pins[firstPin …] of the module, port by port, lowest bit first
    std::string init;         ///< parameter INIT, or empty
    SourcePosition position;
};

/// A named wire of one or more bits.
struct Signal {
    std::string name; ///< begins with `$` when generated
    Bit firstBit = 0;
    unsigned width = 1;
    SourcePosition position;
    bool port = false;
};

struct Module {
    std::string name;
    SourcePosition position;
    bool top = false;
    std::vector<std::pair<std::string, Direction>> ports; ///< each has a signal of the same name
    std::vector<Signal> signals;                          ///< every bit is in exactly one
    std::vector<Cell> cells;
    std::vector<Bit> pins;
    Bit bitCount = 0;
};

/// What a correct import of the design holds.
struct DesignCounts {
    std::size_t leafInstances = 0;   ///< unfolded
    std::size_t moduleInstances = 0; ///< unfolded, without the root
    std::size_t modules = 0;         ///< user modules, the top among them
    std::size_t topNets = 0;         ///< bits of the top module
    std::size_t topItems = 0;        ///< nets and buses of the top, once bits with subscripts are grouped
    std::size_t topUserItems = 0;    ///< those of them with a source position
    std::size_t clockDomains = 0;
    std::size_t registers = 0; ///< unfolded
    std::size_t depth = 0;     ///< of the deepest leaf instance
};

/// A net whose clock is known from its making.
struct KnownClock {
    Bit bit;             ///< of the top module
    std::uint32_t clock; ///< index into Design::clockNets
};

/// One generated design. Modules stand before those that instantiate them; the last one is the top.
struct Design {
    std::vector<std::string> files; ///< files[0] is not used
    std::vector<CellType> types;
    std::vector<Module> modules;
    DesignCounts counts;
    std::vector<std::string> clockNets;  ///< names of the nets where the clocks begin
    std::vector<KnownClock> knownClocks; ///< nets of the top that registers drive, as far as known

    const Module &top() const { return modules.back(); }
};

/// One module of look-up tables, flip-flops, memories, arithmetic and buffers, as technology mapping leaves it.
/// @p leafInstances is exact and at least 1000.
Design makeFlatDesign(std::size_t leafInstances);
/// Four levels of modules with word-level operators and registers as leaves, as elaboration leaves it. Unfolded it has
/// exactly @p leafInstances leaves, at least 1000; about one module in a hundred instances is a distinct one.
Design makeHierarchicalDesign(std::size_t leafInstances);

/// Name of the object for sorting: generated names first, as yosys keeps them.
bool nameLess(const std::string &left, const std::string &right);
/// Puts signals and cells of every module into the order in which yosys writes them.
void sortByName(Design &design);

} // namespace kvr::netlistdb::bench
