#pragma once

#include "analysis/crossings/CellFunctions.h"
#include "analysis/crossings/Cones.h"
#include "analysis/crossings/Registers.h"

#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace kvr::netlistdb::analysis {

/// Finds out which ways from one clock to another are opened by something that was synchronized from the one to the
/// other: a clock enable, a multiplexer's select, an input of a gate.
class Controls {
  public:
    /// @p synchronized: outputs of the synchronizers between the two clocks. @p cones: of the launch clock.
    Controls(Unfolding &design, Registers &registers, CellFunctions &functions, const Cones &cones,
             std::uint32_t launch, std::uint32_t capture, std::unordered_set<Node> synchronized);

    bool any() const { return !m_synchronized.empty(); }
    /// The net that opens every way to @p node; NONE when some way is always open.
    Node controlOf(Node node);
    /// The net on the clock enable of the register of @p pin, when that is synchronized; otherwise NONE.
    Node enableOf(const PinPlace &pin);
    /// True when the multiplexer in front of data pin @p pin, which @p control opens, shows the register's own output
    /// otherwise.
    bool holds(const PinPlace &pin);

  private:
    /// Registers of the capture clock that may lie between a synchronizer and what it controls.
    static constexpr unsigned MOST_REGISTERS = 2;

    bool isControl(Node node);
    bool isSynchronized(Node node);
    bool searchBack(Node node);
    bool isBlocked(std::uint32_t context, const Cones::Edge &edge, Node &control);
    bool isChosen(std::uint32_t context, const Cones::Edge &edge, Node &control);
    void findOpenSteps();
    std::size_t spreadOpenSteps();

    Unfolding &m_design;
    Registers &m_registers;
    CellFunctions &m_functions;
    const Cones &m_cones;
    std::uint32_t m_launch;
    std::uint32_t m_capture;
    std::unordered_set<Node> m_synchronized;
    std::unordered_map<Node, bool> m_known;
    std::vector<bool> m_isOpen;    ///< by step; empty until it is needed
    std::vector<bool> m_wasOpen;   ///< by step: with the controls that were known before
    std::vector<Node> m_controlOf; ///< by step: of the last edge that is blocked on the way there
};

} // namespace kvr::netlistdb::analysis
