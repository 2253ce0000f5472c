#pragma once

#include "analysis/crossings/Registers.h"

#include <netlistdb/analysis/Crossings.h>

#include <cstdint>
#include <string>
#include <vector>

namespace kvr::netlistdb::analysis {

/// Names the ends of crossings.
class CrossingEnds {
  public:
    CrossingEnds(Unfolding &design, Registers &registers) : m_design(design), m_registers(registers) {}

    /// A register, memory or black box that launches from output @p pin onto @p node.
    CrossingEnd source(const PinPlace &pin, Node node);
    /// Port @p port of the top.
    CrossingEnd port(std::uint32_t port, Node node);
    /// What captures at input @p pin.
    CrossingEnd target(const PinPlace &pin);
    /// Where the register of @p pin is declared, or otherwise its cell.
    SourcePlace placeOf(const PinPlace &pin, const IVDBNet *shown);
    std::string nameOf(Node node);

  private:
    CrossingEnd cellEnd(const PinPlace &pin);
    std::string memoryName(const PinPlace &pin, const std::string &cell);
    void nameAfter(CrossingEnd &end, Node node);
    const std::string &pathOf(std::uint32_t context);

    Unfolding &m_design;
    Registers &m_registers;
    std::vector<std::string> m_paths;        ///< by context
    std::vector<IVDBInstance *> m_instances; ///< by context
};

} // namespace kvr::netlistdb::analysis
