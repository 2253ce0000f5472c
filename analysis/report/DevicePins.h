#pragma once

#include "analysis/DesignModel.h"

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb::analysis {

/// The nets that no general wire of the device carries: between I/O cells and the package, and between hard blocks.
class DevicePins {
  public:
    explicit DevicePins(const DesignModel &design);

    /// A wire that joins nothing but I/O cells, hard blocks and ports of the top.
    struct Wire {
        bool isPadSide;     ///< it has an I/O cell and a port of the top
        bool isPackagePin;  ///< it has a port of the top
        std::string cell;   ///< path of an I/O cell or hard block on it
        std::string type;   ///< what that cell is
        std::string inside; ///< full name of the net on the other side of the I/O cell; empty when there is none
    };
    /// The wire that the net belongs to; null when it is an ordinary one.
    const Wire *find(const Place &place) const;

  private:
    friend class DevicePinFinder;
    using Path = std::vector<std::uint32_t>; ///< instances from the top down

    static Path pathOf(const Context &context);

    std::vector<Wire> m_wires;
    std::map<Path, std::unordered_map<std::uint32_t, std::uint32_t>> m_nets; ///< from net to wire
};

} // namespace kvr::netlistdb::analysis
