#include "analysis/crossings/Wires.h"

#include <algorithm>

namespace kvr::netlistdb::analysis {

namespace {

/// Rings of buffers have no driver.
constexpr unsigned LONGEST_WAY = 100000;

bool contains(const Span<std::uint32_t> &pins, std::uint32_t pin)
{
    return std::find(pins.begin(), pins.end(), pin) != pins.end();
}

} // namespace

Driver driverOf(Unfolding &design, Node node)
{
    for (unsigned step = 0; step < LONGEST_WAY; ++step) {
        unsigned sources = 0;
        std::optional<PinPlace> pin;
        Node before = NONE;
        design.forEachSource(
            node,
            [&](const PinPlace &found) {
                ++sources;
                pin = found;
            },
            [&](Node found) {
                ++sources;
                before = found;
            },
            [&](std::uint32_t) { ++sources; });
        if (sources != 1) {
            return {node, std::nullopt};
        }
        if (pin) {
            const std::uint32_t passed = design.model(*pin).pins[pin->pin].passes;
            before = passed != NONE ? design.nodeAt({pin->context, pin->cell, passed}) : NONE;
            if (before == NONE) {
                return {node, pin};
            }
        }
        if (before == NONE || before == node) {
            return {node, std::nullopt};
        }
        node = before;
    }
    return {node, std::nullopt};
}

bool isConstant(Unfolding &design, Node node)
{
    const Driver driver = driverOf(design, node);
    return driver.pin && design.model(*driver.pin).kind == CellKind::Constant;
}

bool isOnlyPassed(const CellModel &model, std::uint32_t pin)
{
    bool passes = false;
    for (const CellModel::Pin &output : model.pins) {
        if (output.passes == pin) {
            passes = true;
        } else if (output.group != NONE && contains(model.groups[output.group], pin)) {
            return false;
        }
    }
    return passes;
}

Loads loadsOf(Unfolding &design, Node node, std::size_t most)
{
    Loads loads;
    std::vector<Node> pending{node};
    std::vector<Node> seen{node};
    const auto reach = [&](Node found) {
        if (found != NONE && std::find(seen.begin(), seen.end(), found) == seen.end()) {
            seen.push_back(found);
            pending.push_back(found);
        }
    };
    while (!pending.empty() && loads.pins.size() <= most && seen.size() <= 64 + most) {
        const Node at = pending.back();
        pending.pop_back();
        design.forEachLoad(
            at,
            [&](const PinPlace &pin) {
                const CellModel &model = design.model(pin);
                if (!isOnlyPassed(model, pin.pin)) {
                    loads.pins.push_back(pin);
                    return;
                }
                forEachPassed(model, pin.pin, [&](std::uint32_t output) {
                    reach(design.nodeAt({pin.context, pin.cell, output}));
                });
            },
            reach, [&](std::uint32_t) { loads.reachesPort = true; });
    }
    // A net that is led around everywhere without being used: what it feeds is not known.
    loads.reachesPort = loads.reachesPort || !pending.empty();
    return loads;
}

} // namespace kvr::netlistdb::analysis
