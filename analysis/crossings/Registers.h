#pragma once

#include "analysis/crossings/Unfolding.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb::analysis {

/// Which output pins of a flip-flop show what which of its data pins captures.
class Registers {
  public:
    explicit Registers(Unfolding &design) : m_design(design) {}

    /// The outputs of the bit whose data pin is @p pin; empty when @p pin is no data pin of a flip-flop, or one of
    /// several that go into one bit.
    const std::vector<std::uint32_t> &outputsOf(const PinPlace &pin);
    /// The data pin of the bit that output @p pin shows; NONE when there is none, or more than one.
    std::uint32_t dataOf(const PinPlace &pin);
    /// Nodes on outputsOf().
    std::vector<Node> nodesOf(const PinPlace &pin);
    /// The node that names what @p pin of a cell captures: the output of the bit, or NONE.
    Node shownBy(const PinPlace &pin);

  private:
    struct Bits {
        std::vector<std::vector<std::uint32_t>> outputs; ///< by pin
        std::vector<std::uint32_t> data;                 ///< by pin
        std::vector<std::uint32_t> shared;               ///< data pins that go into one bit together
    };
    const Bits &bitsOf(const CellModel &model);
    /// Of data pins that a cell combines, the only one that is not constant; NONE when there are more.
    std::uint32_t onlyOneUsed(const Bits &bits, const PinPlace &cell);

    Unfolding &m_design;
    std::unordered_map<const CellModel *, Bits> m_bits;
    const std::vector<std::uint32_t> m_none;
};

} // namespace kvr::netlistdb::analysis
