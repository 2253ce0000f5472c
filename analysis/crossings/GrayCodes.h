#pragma once

#include "analysis/crossings/CellFunctions.h"
#include "analysis/crossings/Registers.h"

#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace kvr::netlistdb::analysis {

/// Recognises registers that capture a word in Gray code, `x ^ (x >> 1)`.
///
/// The logic in front of the registers is computed with random values, the same ones wherever the same net is read;
/// cells of unknown function yield a value that depends on their inputs alone. In a Gray-coded word, the exclusive or
/// of each bit with all higher ones is the bit of the binary word, which must be there, too: on some net of that logic,
/// or in a binary counter that is part of it.
class GrayCodes {
  public:
    GrayCodes(Unfolding &design, Registers &registers, CellFunctions &functions)
        : m_design(design), m_registers(registers), m_functions(functions)
    {
    }

    /// @p bits: the data pins of the register, at least two, the lowest bit first.
    bool isGray(const std::vector<PinPlace> &bits);

  private:
    /// What a bit of a register captures and when.
    struct Capture {
        Node data;
        Node when; ///< clock enable, or the select of a multiplexer that holds the bit otherwise; NONE: always
        bool whenHigh;
    };

    Capture captureOf(const PinPlace &bit);
    std::uint64_t valueOf(Node node);
    std::uint64_t computed(Node node, bool &isReady, std::vector<Node> &missing);
    std::uint64_t cellValue(const PinPlace &output, bool &isReady, std::vector<Node> &missing);

    Unfolding &m_design;
    Registers &m_registers;
    CellFunctions &m_functions;
    std::unordered_map<Node, std::uint64_t> m_values;
    std::unordered_set<Node> m_open; ///< on the way that is being computed
    std::vector<PinPlace> m_registersMet;
};

} // namespace kvr::netlistdb::analysis
