#pragma once

#include "analysis/crossings/Unfolding.h"

#include <optional>
#include <vector>

namespace kvr::netlistdb::analysis {

/// Where the value of a node comes from, behind hierarchy, buffers and, when asked for, inverters.
struct Driver {
    Node node;                   ///< the last one on the way back
    std::optional<PinPlace> pin; ///< the output that drives it; none: a port, nothing, or several drivers
};

/// Follows @p node back as long as it has one driver, a buffer, an inverter or an instance.
Driver driverOf(Unfolding &design, Node node);

/// True when a constant drives the node.
bool isConstant(Unfolding &design, Node node);

/// What a node feeds through hierarchy, buffers and inverters.
struct Loads {
    std::vector<PinPlace> pins; ///< those of buffers left out
    bool reachesPort = false;   ///< a port of the top
};

/// Stops when there are more than @p most pins.
Loads loadsOf(Unfolding &design, Node node, std::size_t most);

/// Output pins that are electrically the input @p pin of a cell.
template <typename Visit> void forEachPassed(const CellModel &model, std::uint32_t pin, Visit visit)
{
    for (std::uint32_t output = 0; output < model.pins.size(); ++output) {
        if (model.pins[output].passes == pin) {
            visit(output);
        }
    }
}

/// True when every output that @p pin reaches is electrically that pin.
bool isOnlyPassed(const CellModel &model, std::uint32_t pin);

} // namespace kvr::netlistdb::analysis
