#pragma once

#include "Design.h"

namespace kvr::netlistdb::bench {

/// Adds signals and cells to one module of a design.
class ModuleBuilder {
  public:
    ModuleBuilder(Design &design, Module &module) : m_design(design), m_module(module) {}

    /// Returns the lowest bit of the new signal.
    Bit addSignal(std::string name, unsigned width, SourcePosition position);
    /// A signal of one bit for each bit of a vector, named `name[0]` and so on; their bits follow one another.
    Bit addSplitSignal(const std::string &name, unsigned width, SourcePosition position);
    Bit addPort(const std::string &name, Direction direction, unsigned width, SourcePosition position);
    /// Adds a cell whose pins are connected with connect; each must be, before the design is written.
    std::size_t addCell(std::string name, std::uint32_t type, SourcePosition position, std::string init = {});
    /// Connects the pins of a port of @p width bits to the bits from @p firstBit on.
    void connect(std::size_t cell, const std::string &port, Bit firstBit);
    /// Connects one pin, counted over all ports.
    void connectPin(std::size_t cell, std::size_t pin, Bit bit);

    Module &module() { return m_module; }
    const Module &module() const { return m_module; }

  private:
    Design &m_design;
    Module &m_module;
};

} // namespace kvr::netlistdb::bench
