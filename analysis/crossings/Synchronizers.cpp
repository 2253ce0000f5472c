#include "analysis/crossings/Synchronizers.h"

#include <DataBase.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

namespace kvr::netlistdb::analysis {

namespace {

/// Longer chains are synchronizers, too; nobody needs to know how long they are.
constexpr std::size_t MOST_STAGES = 16;

/// Attributes that keep synthesis and placement from tearing flip-flops apart, in lower case.
constexpr std::string_view KEEPING[] = {"async_reg",   "keep",     "dont_touch", "syn_keep",  "syn_preserve",
                                        "syn_noprune", "preserve", "noprune",    "dont_merge"};

std::string lowerCase(const char *text)
{
    std::string lower(text != nullptr ? text : "");
    for (char &c : lower) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return lower;
}

bool isTrue(const std::string &value)
{
    if (value == "false" || value == "no" || value == "off") {
        return false;
    }
    return value.empty() || value.find_first_not_of("0xz") != std::string::npos;
}

bool keeps(const Verific::DesignObj &object)
{
    Verific::MapIter attributes;
    Verific::Att *attribute = nullptr;
    FOREACH_ATTRIBUTE (&object, attributes, attribute) {
        const std::string name = lowerCase(attribute->Key());
        if (std::find(std::begin(KEEPING), std::end(KEEPING), name) != std::end(KEEPING) &&
            isTrue(lowerCase(attribute->Value()))) {
            return true;
        }
    }
    return false;
}

} // namespace

bool Synchronizers::isOn(const PinPlace &data, std::uint32_t clock) const
{
    const CellModel &model = m_design.model(data);
    const Span<std::uint32_t> clocks = model.captures[data.pin];
    return clocks.size() == 1 && m_design.clockAt({data.context, data.cell, model.clocks[clocks[0]].pin}) == clock;
}

bool Synchronizers::isKept(const PinPlace &data)
{
    if (keeps(m_design.instanceAt(data.context, data.cell))) {
        return true;
    }
    for (const Node node : m_registers.nodesOf(data)) {
        const Verific::Net &net = m_design.netAt(node);
        if (keeps(net) || (net.Bus() != nullptr && keeps(*net.Bus()))) {
            return true;
        }
    }
    return false;
}

bool Synchronizers::next(const PinPlace &data, std::uint32_t clock, PinPlace &following)
{
    bool found = false;
    for (const Node node : m_registers.nodesOf(data)) {
        const Loads loads = loadsOf(m_design, node, 1);
        if (loads.reachesPort || loads.pins.size() > 1 || (found && !loads.pins.empty())) {
            return false;
        }
        if (!loads.pins.empty()) {
            following = loads.pins.front();
            found = true;
        }
    }
    return found && !m_registers.outputsOf(following).empty() && isOn(following, clock);
}

FlipFlopChain Synchronizers::behind(const PinPlace &first, std::uint32_t clock)
{
    FlipFlopChain chain;
    if (m_registers.outputsOf(first).empty() || !isOn(first, clock)) {
        return chain;
    }
    chain.stages.push_back(first);
    PinPlace following{};
    while (chain.stages.size() < MOST_STAGES && next(chain.stages.back(), clock, following) &&
           std::find(chain.stages.begin(), chain.stages.end(), following) == chain.stages.end()) {
        chain.stages.push_back(following);
    }
    chain.isKept = chain.stages.size() > 1 && isKept(chain.stages[0]) && isKept(chain.stages[1]);
    return chain;
}

bool Synchronizers::hasReset(const PinPlace &data, const Driver &reset)
{
    const CellModel &model = m_design.model(data);
    for (std::uint32_t pin = 0; pin < model.pins.size(); ++pin) {
        const PinRole role = model.pins[pin].role;
        if (!model.pins[pin].isInput || (role != PinRole::AsyncSetReset && role != PinRole::SetReset)) {
            continue;
        }
        const Node node = m_design.nodeAt({data.context, data.cell, pin});
        if (node != NONE && driverOf(m_design, node).node == reset.node) {
            return true;
        }
    }
    return false;
}

FlipFlopChain Synchronizers::ofReset(const PinPlace &reset, std::uint32_t clock)
{
    const CellModel &model = m_design.model(reset);
    const Driver source = driverOf(m_design, m_design.nodeAt(reset));
    FlipFlopChain all;
    all.isKept = true;
    for (std::uint32_t pin = 0; pin < model.pins.size(); ++pin) {
        PinPlace bit{reset.context, reset.cell, pin};
        if (!model.pins[pin].isInput || m_registers.outputsOf(bit).empty()) {
            continue;
        }
        // Back to the flip-flop that captures a constant.
        std::vector<PinPlace> stages{bit};
        bool isChain = isOn(bit, clock);
        while (isChain) {
            const Node node = m_design.nodeAt(stages.back());
            const Driver driver = node != NONE ? driverOf(m_design, node) : Driver{NONE, std::nullopt};
            if (!driver.pin || m_design.model(*driver.pin).kind == CellKind::Constant) {
                isChain = driver.pin.has_value();
                break;
            }
            const std::uint32_t data = m_registers.dataOf(*driver.pin);
            const PinPlace before{driver.pin->context, driver.pin->cell, data};
            isChain = data != NONE && isOn(before, clock) && hasReset(before, source) && stages.size() < MOST_STAGES;
            if (isChain) {
                stages.push_back(before);
            }
        }
        if (isChain && stages.size() == 1) {
            PinPlace following{};
            isChain = next(bit, clock, following) && hasReset(following, source);
            if (isChain) {
                stages.push_back(following);
            }
        }
        if (!isChain) {
            return {};
        }
        all.isKept = all.isKept && isKept(stages[0]) && isKept(stages[1]);
        if (stages.size() > all.stages.size()) {
            all.stages = stages;
        }
    }
    return all;
}

} // namespace kvr::netlistdb::analysis
