#pragma once

#include "analysis/probe/Users.h"

#include <netlistdb/analysis/CrossProbe.h>

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis::probe {

/// Finds the post-map cells that took in elaborated wires without a match.
class Absorption {
  public:
    /// @p target has for each elaborated wire the post-map wire that it matches, or NONE. All three must outlive this.
    Absorption(const BitGraph &elaborated, const BitGraph &postMap, const std::vector<Signal> &target);

    struct Cell {
        std::uint32_t node = NONE; ///< of the post-map netlist
        GoneReason reason = GoneReason::None;
    };
    /// Goes forward from an elaborated wire to the first ones that have a match: what computes these in the post-map
    /// netlist has taken it in. Returns no node when there is none, or when nothing tells what it is.
    Cell cellWith(Signal elaborated);

  private:
    std::uint32_t logicInFrontOf(Signal postMap) const;
    GoneReason reasonOf(std::uint32_t node, bool wasRegister) const;

    const BitGraph &m_elaborated;
    const BitGraph &m_postMap;
    const std::vector<Signal> &m_target;
    Users m_users;                     ///< of the elaborated wires
    std::vector<std::uint32_t> m_seen; ///< by elaborated wire: the last turn that came to it
    std::uint32_t m_turn = 0;
    std::vector<Signal> m_open;
};

} // namespace kvr::netlistdb::analysis::probe
