#include "analysis/crossings/ForwardCones.h"

#include "analysis/crossings/CrossingPins.h"

#include <algorithm>
#include <deque>
#include <unordered_map>

namespace kvr::netlistdb::analysis {

namespace {

/// Output pins that an input pin reaches at once.
template <typename Visit> void forEachReached(const CellModel &model, std::uint32_t pin, Visit visit)
{
    for (std::uint32_t output = 0; output < model.pins.size(); ++output) {
        const std::uint32_t group = model.pins[output].group;
        if (group == NONE) {
            continue;
        }
        const Span<std::uint32_t> inputs = model.groups[group];
        if (std::find(inputs.begin(), inputs.end(), pin) != inputs.end()) {
            visit(output);
        }
    }
}

bool isCaptured(const Unfolding &design, const PinPlace &pin, std::uint32_t clock)
{
    const std::vector<std::uint32_t> clocks = capturingClocks(design.modules(), design.moduleOf(pin.context),
                                                              design.bindingOf(pin.context), {pin.cell, pin.pin});
    return std::binary_search(clocks.begin(), clocks.end(), clock);
}

} // namespace

bool reachesAnother(Unfolding &design, const std::vector<Node> &start, std::uint32_t clock, const PinPlace &pin)
{
    std::vector<Node> pending;
    std::unordered_set<Node> seen;
    const auto reach = [&](Node node) {
        if (node != NONE && design.sets().contains(design.captureOf(node), clock) && seen.insert(node).second) {
            pending.push_back(node);
        }
    };
    for (const Node node : start) {
        reach(node);
    }
    bool found = false;
    while (!pending.empty() && !found) {
        const Node node = pending.back();
        pending.pop_back();
        design.forEachLoad(
            node,
            [&](const PinPlace &load) {
                found = found || (!(load == pin) && isCaptured(design, load, clock));
                forEachReached(design.model(load), load.pin, [&](std::uint32_t output) {
                    reach(design.nodeAt({load.context, load.cell, output}));
                });
            },
            reach, [](std::uint32_t) {});
    }
    return found;
}

std::vector<Meeting> findMeetings(Unfolding &design, const std::vector<std::vector<Node>> &bits)
{
    std::vector<Meeting> meetings(bits.size());
    // Each net belongs to the bit that reaches it first. What a second one finds there, the first one finds behind it,
    // too, so that it need not go on.
    std::unordered_map<Node, std::uint32_t> owner;
    std::deque<Node> pending;
    const auto reach = [&](Node node, std::uint32_t bit) {
        if (node == NONE) {
            return;
        }
        const auto [found, isNew] = owner.try_emplace(node, bit);
        if (isNew) {
            pending.push_back(node);
            return;
        }
        if (found->second != bit) {
            for (const std::uint32_t each : {bit, found->second}) {
                if (!meetings[each].meets) {
                    meetings[each] = {true, node};
                }
            }
        }
    };
    for (std::uint32_t bit = 0; bit < bits.size(); ++bit) {
        for (const Node node : bits[bit]) {
            reach(node, bit);
        }
    }
    while (!pending.empty()) {
        const Node node = pending.front();
        pending.pop_front();
        const std::uint32_t bit = owner[node];
        design.forEachLoad(
            node,
            [&](const PinPlace &load) {
                forEachReached(design.model(load), load.pin, [&](std::uint32_t output) {
                    reach(design.nodeAt({load.context, load.cell, output}), bit);
                });
            },
            [&](Node next) { reach(next, bit); }, [](std::uint32_t) {});
    }
    return meetings;
}

} // namespace kvr::netlistdb::analysis
