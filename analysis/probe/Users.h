#pragma once

#include "analysis/probe/BitGraph.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis::probe {

/// The fan-out of every wire: the nodes of which it is an input, once for each such input, in ascending order.
class Users {
  public:
    Users() = default;
    explicit Users(const BitGraph &graph);

    Span<std::uint32_t> operator[](Signal signal) const
    {
        return {m_nodes.data() + m_first[signal], m_nodes.data() + m_first[signal + 1]};
    }

  private:
    std::vector<std::uint32_t> m_first;
    std::vector<std::uint32_t> m_nodes;
};

} // namespace kvr::netlistdb::analysis::probe
