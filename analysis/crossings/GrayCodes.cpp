#include "analysis/crossings/GrayCodes.h"

#include "analysis/crossings/Wires.h"

#include <DataBase.h>

#include <algorithm>
#include <functional>

namespace kvr::netlistdb::analysis {

namespace {

std::uint64_t mix(std::uint64_t value)
{
    value += 0x9E3779B97F4A7C15U;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31);
}

} // namespace

GrayCodes::Capture GrayCodes::captureOf(const PinPlace &bit)
{
    Capture capture{m_design.nodeAt(bit), NONE, true};
    const CellModel &model = m_design.model(bit);
    for (std::uint32_t pin = 0; pin < model.pins.size(); ++pin) {
        const Node node = model.pins[pin].isInput && model.pins[pin].role == PinRole::Enable
                              ? m_design.nodeAt({bit.context, bit.cell, pin})
                              : NONE;
        if (node != NONE && !isConstant(m_design, node)) {
            capture.when = driverOf(m_design, node).node;
        }
    }
    const Driver driver = capture.data != NONE ? driverOf(m_design, capture.data) : Driver{NONE, std::nullopt};
    const TruthTable *const table = driver.pin ? m_functions.of(*driver.pin) : nullptr;
    if (capture.when != NONE || table == nullptr || m_design.model(*driver.pin).kind != CellKind::Multiplexer ||
        table->inputs.size() != 3) {
        return capture;
    }
    // A multiplexer of two, its inputs in the order A, B, select, that holds the bit.
    const auto input = [&](std::size_t place) {
        return m_design.nodeAt({driver.pin->context, driver.pin->cell, table->inputs[place]});
    };
    const std::vector<Node> own = m_registers.nodesOf(bit);
    for (const std::size_t held : {0U, 1U}) {
        const Node node = input(held);
        const Node other = input(1 - held);
        const Node select = input(2);
        if (node != NONE && other != NONE && select != NONE &&
            std::find(own.begin(), own.end(), driverOf(m_design, node).node) != own.end()) {
            return {other, driverOf(m_design, select).node, held == 0};
        }
    }
    return capture;
}

std::uint64_t GrayCodes::cellValue(const PinPlace &output, bool &isReady, std::vector<Node> &missing)
{
    const CellModel &model = m_design.model(output);
    const std::uint32_t data = m_registers.dataOf(output);
    if (data != NONE) {
        m_registersMet.push_back({output.context, output.cell, data});
    }
    const std::uint32_t group = model.pins[output.pin].group;
    const TruthTable *const table = m_functions.of(output);
    if (model.kind == CellKind::Constant) {
        return model.view->Type() == Verific::PRIM_PWR ? ~std::uint64_t{0} : 0;
    }
    if (group == NONE || model.isRegister()) {
        return mix(m_design.nodeAt(output));
    }
    std::vector<std::uint32_t> inputs(model.groups[group].begin(), model.groups[group].end());
    if (table != nullptr) {
        inputs = table->inputs;
    } else if (inputs.empty()) {
        return 0; // beyond the end of an operand
    }
    std::vector<std::uint64_t> values;
    for (const std::uint32_t input : inputs) {
        const Node node = m_design.nodeAt({output.context, output.cell, input});
        const auto known = node != NONE ? m_values.find(node) : m_values.end();
        if (node == NONE) {
            values.push_back(0);
        } else if (known != m_values.end()) {
            values.push_back(known->second);
        } else if (m_open.count(node) != 0) {
            values.push_back(mix(node)); // a loop
        } else {
            isReady = false;
            missing.push_back(node);
        }
    }
    if (!isReady) {
        return 0;
    }
    if (table != nullptr) {
        return table->evaluate(values);
    }
    std::uint64_t hash = mix(std::hash<std::string_view>()(typeOf(m_design, output.context, output.cell)) + output.pin);
    for (const std::uint64_t value : values) {
        hash = mix(hash ^ value);
    }
    return hash;
}

std::uint64_t GrayCodes::computed(Node node, bool &isReady, std::vector<Node> &missing)
{
    const Driver driver = driverOf(m_design, node);
    if (driver.node != node) {
        // Inverters are on the way, too: one step at a time.
        std::uint64_t value = 0;
        m_design.forEachSource(
            node, [&](const PinPlace &pin) { value = cellValue(pin, isReady, missing); },
            [&](Node before) {
                const auto known = m_values.find(before);
                if (known != m_values.end()) {
                    value = known->second;
                } else {
                    isReady = false;
                    missing.push_back(before);
                }
            },
            [](std::uint32_t) {});
        return value;
    }
    return driver.pin ? cellValue(*driver.pin, isReady, missing) : mix(node);
}

std::uint64_t GrayCodes::valueOf(Node start)
{
    std::vector<Node> pending{start};
    std::vector<Node> missing;
    while (!pending.empty()) {
        const Node node = pending.back();
        if (m_values.count(node) != 0) {
            pending.pop_back();
            continue;
        }
        m_open.insert(node);
        bool isReady = true;
        missing.clear();
        const std::uint64_t value = computed(node, isReady, missing);
        if (isReady) {
            m_values.emplace(node, value);
            m_open.erase(node);
            pending.pop_back();
        } else {
            pending.insert(pending.end(), missing.begin(), missing.end());
        }
    }
    return m_values[start];
}

bool GrayCodes::isGray(const std::vector<PinPlace> &bits)
{
    m_values.clear();
    m_registersMet.clear();
    std::vector<std::uint64_t> binary(bits.size());
    const Node when = captureOf(bits.front()).when;
    std::uint64_t higher = 0;
    for (std::size_t bit = bits.size(); bit-- > 0;) {
        const Capture capture = captureOf(bits[bit]);
        if (capture.data == NONE || capture.when != when) {
            return false;
        }
        higher ^= valueOf(capture.data);
        binary[bit] = higher;
    }
    // Of a register that stands beside, what it captures at the same time counts, too.
    const std::vector<PinPlace> beside = m_registersMet;
    for (const PinPlace &other : beside) {
        const Capture capture = captureOf(other);
        if (capture.data != NONE && capture.when == when) {
            valueOf(capture.data);
        }
    }
    std::unordered_set<std::uint64_t> values;
    for (const auto &[node, value] : m_values) {
        values.insert(value);
    }
    return std::all_of(binary.begin(), binary.end(), [&](std::uint64_t value) {
        return value != 0 && value != ~std::uint64_t{0} && values.count(value) != 0;
    });
}

} // namespace kvr::netlistdb::analysis
