#pragma once

#include "tests/property/clockmap/ReferenceMap.h"

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace crossings_property_test {

using clockmap_test::RandomDesign;
using clockmap_test::ReferenceMap;

/// The register-to-register paths between clocks, found the plain way: the hierarchy is unfolded, and the fan-in of
/// every register pin is walked by itself.
class ReferenceCrossings {
  public:
    /// @p clocks: of the same design.
    ReferenceCrossings(const RandomDesign &design, const ReferenceMap &clocks);

    /// For `launch>capture cell.pin cells`, "none" being the launch clock of ports and black boxes, the names of the
    /// sources that are so near: nets, and the cells that drive them.
    const std::map<std::string, std::set<std::string>> &all() const { return m_all; }

  private:
    struct Source {
        std::string clockNet; ///< empty: no clock
        std::string cell;
    };
    struct Capture {
        std::string cell;
        std::string pin;
        std::string net;
        std::string clockNet;
        bool isReset;
    };
    struct Edge {
        std::string net;
        unsigned cells;
    };

    void unfold(const Verific::Netlist *netlist, const std::string &path, const std::vector<std::string> &ports,
                bool isTop);
    void addLeaf(const Verific::Instance *instance, const std::string &path);
    void addLatch(const clockmap_test::CellFacts &facts, const std::string &cell,
                  const std::map<std::string, std::string> &on);
    void follow(const Capture &capture);
    /// The clock that a net is; empty when it is none.
    std::string clockOf(const std::string &net) const;

    const RandomDesign &m_design;
    const ReferenceMap &m_clocks;
    std::map<std::string, std::vector<Edge>> m_before;
    std::map<std::string, std::vector<Source>> m_sources;
    std::vector<Capture> m_captures;
    std::map<std::string, std::set<std::string>> m_all;
};

} // namespace crossings_property_test
