#pragma once

#include "analysis/plan/CellInputs.h"

#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis::plan {

/// Hashes of what wires compute from registers, ports and black boxes, which count by their names.
class NearHashes {
  public:
    explicit NearHashes(const probe::BitGraph &graph);

    /// By wire; 0 where the names do not suffice, or where there is nothing to compute.
    std::vector<std::uint64_t> take();

  private:
    /// What is known of wires while one or several are worked out.
    struct Memo {
        enum State : std::uint8_t { New, Open, Done };
        std::vector<State> states;
        std::vector<std::uint64_t> hashes;
        std::vector<probe::Signal> touched;
    };

    std::uint64_t leafOf(probe::Signal signal) const;
    /// Visits the wires that the driver of @p signal makes it from.
    template <typename Visit> void forEachInputOf(probe::Signal signal, Visit visit) const
    {
        forEachInput(m_graph, m_graph.nodes[m_graph.drivers[signal]], m_places[signal], visit);
    }
    bool isLeaf(probe::Signal signal) const;
    std::uint64_t hashOfCone(probe::Signal start, std::uint32_t root, Memo &memo);
    std::uint64_t joinedInputs(probe::Signal signal, const Memo &memo) const;
    std::uint64_t registerHash(probe::Signal signal, Memo &memo);

    const probe::BitGraph &m_graph;
    std::vector<std::uint64_t> m_names;  ///< by wire: hash of a name nearest to the top; 0: none
    std::vector<std::uint32_t> m_places; ///< by wire: its place among the outputs of its driver
    std::vector<std::uint64_t> m_shapes; ///< by wire: what its driver does
    std::vector<probe::Signal> m_waiting;
    std::size_t m_rootOutput = 0; ///< the bit of the register that is worked out
};

} // namespace kvr::netlistdb::analysis::plan
