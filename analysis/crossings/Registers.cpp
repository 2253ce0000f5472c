#include "analysis/crossings/Registers.h"

#include "analysis/crossings/Wires.h"

#include <algorithm>

namespace kvr::netlistdb::analysis {

const Registers::Bits &Registers::bitsOf(const CellModel &model)
{
    const auto [found, isNew] = m_bits.try_emplace(&model);
    Bits &bits = found->second;
    if (!isNew) {
        return bits;
    }
    bits.outputs.resize(model.pins.size());
    bits.data.assign(model.pins.size(), NONE);
    if (model.kind != CellKind::FlipFlop) {
        return bits;
    }
    std::vector<std::uint32_t> data;
    std::vector<std::uint32_t> outputs;
    for (std::uint32_t pin = 0; pin < model.pins.size(); ++pin) {
        if (model.pins[pin].isInput && model.pins[pin].role == PinRole::Data && !model.captures[pin].empty()) {
            data.push_back(pin);
        }
        if (model.pins[pin].isOutput && !model.launches[pin].empty()) {
            outputs.push_back(pin);
        }
    }
    if (data.size() == outputs.size()) {
        for (std::size_t at = 0; at < data.size(); ++at) {
            bits.outputs[data[at]] = {outputs[at]};
            bits.data[outputs[at]] = data[at];
        }
    } else if (data.size() == 1) {
        bits.outputs[data.front()] = outputs;
        for (const std::uint32_t output : outputs) {
            bits.data[output] = data.front();
        }
    } else if (!outputs.empty()) {
        bits.shared = data;
        for (const std::uint32_t pin : data) {
            bits.outputs[pin] = outputs;
        }
    }
    return bits;
}

std::uint32_t Registers::onlyOneUsed(const Bits &bits, const PinPlace &cell)
{
    std::uint32_t used = NONE;
    for (const std::uint32_t pin : bits.shared) {
        const Node node = m_design.nodeAt({cell.context, cell.cell, pin});
        if (node != NONE && !isConstant(m_design, node)) {
            if (used != NONE) {
                return NONE;
            }
            used = pin;
        }
    }
    return used;
}

const std::vector<std::uint32_t> &Registers::outputsOf(const PinPlace &pin)
{
    const Bits &bits = bitsOf(m_design.model(pin));
    if (!bits.shared.empty() && !bits.outputs[pin.pin].empty() && onlyOneUsed(bits, pin) != pin.pin) {
        return m_none;
    }
    return bits.outputs[pin.pin];
}

std::uint32_t Registers::dataOf(const PinPlace &pin)
{
    const Bits &bits = bitsOf(m_design.model(pin));
    return bits.shared.empty() ? bits.data[pin.pin] : onlyOneUsed(bits, pin);
}

std::vector<Node> Registers::nodesOf(const PinPlace &pin)
{
    std::vector<Node> nodes;
    for (const std::uint32_t output : outputsOf(pin)) {
        const Node node = m_design.nodeAt({pin.context, pin.cell, output});
        if (node != NONE) {
            nodes.push_back(node);
        }
    }
    return nodes;
}

Node Registers::shownBy(const PinPlace &pin)
{
    const CellModel &model = m_design.model(pin);
    if (model.kind != CellKind::FlipFlop && model.kind != CellKind::Latch) {
        return NONE;
    }
    const Bits &bits = bitsOf(model);
    std::vector<std::uint32_t> outputs = bits.outputs[pin.pin];
    if (model.kind == CellKind::Latch && model.pins[pin.pin].role == PinRole::Data) {
        for (std::uint32_t output = 0; output < model.pins.size(); ++output) {
            const std::uint32_t group = model.pins[output].group;
            if (group != NONE && std::find(model.groups[group].begin(), model.groups[group].end(), pin.pin) !=
                                     model.groups[group].end()) {
                outputs.push_back(output);
            }
        }
    }
    if (outputs.empty()) {
        // A control pin: the lowest bit of the register.
        for (std::uint32_t output = 0; output < model.pins.size(); ++output) {
            if (model.pins[output].isOutput) {
                outputs.push_back(output);
            }
        }
    }
    for (const std::uint32_t output : outputs) {
        const Node node = m_design.nodeAt({pin.context, pin.cell, output});
        if (node != NONE) {
            return node;
        }
    }
    return NONE;
}

} // namespace kvr::netlistdb::analysis
