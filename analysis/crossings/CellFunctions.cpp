#include "analysis/crossings/CellFunctions.h"

#include "analysis/ModelBuilder.h"
#include "analysis/Texts.h"

#include <DataBase.h>

#include <algorithm>
#include <cstring>
#include <unordered_map>

namespace kvr::netlistdb::analysis {

namespace {

constexpr std::size_t MOST_INPUTS = 6;

/// The output of a gate; its inputs are given in the order of its pins.
using Gate = bool (*)(const std::vector<bool> &in);

bool all(const std::vector<bool> &in)
{
    return std::find(in.begin(), in.end(), false) == in.end();
}

bool any(const std::vector<bool> &in)
{
    return std::find(in.begin(), in.end(), true) != in.end();
}

bool odd(const std::vector<bool> &in)
{
    return std::count(in.begin(), in.end(), true) % 2 != 0;
}

const std::unordered_map<std::string_view, Gate> &gates()
{
    static const std::unordered_map<std::string_view, Gate> table = {
        {"$_AND_", all},
        // The bits that a shorter operand lacks are zero.
        {"$and", [](const std::vector<bool> &in) { return in.size() == 2 && all(in); }},
        {"$reduce_and", all},
        {"$_OR_", any},
        {"$or", any},
        {"$reduce_or", any},
        {"$reduce_bool", any},
        {"$_XOR_", odd},
        {"$xor", odd},
        {"$reduce_xor", odd},
        {"$_NAND_", [](const std::vector<bool> &in) { return !all(in); }},
        {"$_NOR_", [](const std::vector<bool> &in) { return !any(in); }},
        {"$_XNOR_", [](const std::vector<bool> &in) { return !odd(in); }},
        {"$xnor", [](const std::vector<bool> &in) { return !odd(in); }},
        {"$reduce_xnor", [](const std::vector<bool> &in) { return !odd(in); }},
        {"$_ANDNOT_", [](const std::vector<bool> &in) { return in[0] && !in[1]; }},
        {"$_ORNOT_", [](const std::vector<bool> &in) { return in[0] || !in[1]; }},
        {"$_AOI3_", [](const std::vector<bool> &in) { return !((in[0] && in[1]) || in[2]); }},
        {"$_OAI3_", [](const std::vector<bool> &in) { return !((in[0] || in[1]) && in[2]); }},
        {"$_AOI4_", [](const std::vector<bool> &in) { return !((in[0] && in[1]) || (in[2] && in[3])); }},
        {"$_OAI4_", [](const std::vector<bool> &in) { return !((in[0] || in[1]) && (in[2] || in[3])); }},
    };
    return table;
}

std::vector<std::uint32_t> byName(const CellModel &model, const Span<std::uint32_t> &pins)
{
    std::vector<std::uint32_t> sorted(pins.begin(), pins.end());
    std::sort(sorted.begin(), sorted.end(), [&](std::uint32_t a, std::uint32_t b) {
        const std::string_view left = textOf(model.pins[a].port->Name());
        const std::string_view right = textOf(model.pins[b].port->Name());
        return left != right ? left < right : a < b;
    });
    return sorted;
}

/// Pins whose port names begin with @p name, in the order of the pins.
std::vector<std::uint32_t> pinsNamed(const CellModel &model, const std::vector<std::uint32_t> &pins,
                                     std::string_view name)
{
    std::vector<std::uint32_t> named;
    for (const std::uint32_t pin : pins) {
        if (startsWith(textOf(model.pins[pin].port->Name()), name)) {
            named.push_back(pin);
        }
    }
    return named;
}

template <typename Function> TruthTable tabulate(std::vector<std::uint32_t> inputs, Function function)
{
    TruthTable table;
    std::vector<bool> values(inputs.size());
    for (std::uint32_t row = 0; row < (1U << inputs.size()); ++row) {
        for (std::size_t place = 0; place < inputs.size(); ++place) {
            values[place] = (row >> place & 1U) != 0;
        }
        table.bits |= std::uint64_t{function(values)} << row;
    }
    table.inputs = std::move(inputs);
    return table;
}

} // namespace

std::string_view typeOf(Unfolding &design, std::uint32_t context, std::uint32_t cell)
{
    return typeOf(design.model(context, cell).view);
}

std::uint64_t TruthTable::evaluate(const std::vector<std::uint64_t> &values) const
{
    std::uint64_t result = 0;
    for (std::uint32_t row = 0; row < (1U << inputs.size()); ++row) {
        if ((bits >> row & 1U) == 0) {
            continue;
        }
        std::uint64_t chosen = ~std::uint64_t{0};
        for (std::size_t place = 0; place < inputs.size(); ++place) {
            chosen &= (row >> place & 1U) != 0 ? values[place] : ~values[place];
        }
        result |= chosen;
    }
    return result;
}

bool TruthTable::isBlocked(std::size_t place, std::uint32_t controls) const
{
    controls &= ~(1U << place);
    if (controls == 0) {
        return false;
    }
    const std::uint32_t rows = 1U << inputs.size();
    for (std::uint32_t chosen = 0; chosen < rows; ++chosen) {
        if ((chosen & ~controls) != 0) {
            continue;
        }
        bool changes = false;
        for (std::uint32_t row = 0; row < rows && !changes; ++row) {
            changes = (row & controls) == chosen && (bits >> row & 1U) != (bits >> (row ^ 1U << place) & 1U);
        }
        if (!changes) {
            return true;
        }
    }
    return false;
}

const TruthTable *CellFunctions::of(const PinPlace &output)
{
    const auto [found, isNew] =
        m_known.try_emplace({m_design.moduleOf(output.context), output.cell, output.pin}, std::nullopt);
    if (isNew) {
        found->second = find(output);
    }
    return found->second ? &*found->second : nullptr;
}

std::optional<TruthTable> CellFunctions::find(const PinPlace &output)
{
    const CellModel &model = m_design.model(output);
    const std::uint32_t group = model.pins[output.pin].group;
    if (group == NONE || model.groups[group].size() > MOST_INPUTS || model.isRegister() ||
        model.kind == CellKind::Latch || model.kind == CellKind::Pad) {
        return std::nullopt;
    }
    const std::vector<std::uint32_t> inputs(model.groups[group].begin(), model.groups[group].end());
    const std::uint32_t passed = model.pins[output.pin].passes;
    if (passed != NONE) {
        const bool inverts = model.pins[output.pin].inverts;
        return tabulate({passed}, [&](const std::vector<bool> &in) { return in[0] != inverts; });
    }
    const std::string_view type = typeOf(m_design, output.context, output.cell);
    if (type.find("LUT") != std::string_view::npos || type == "$lut") {
        return lookUpTable(output);
    }
    return gate(output, type);
}

std::optional<TruthTable> CellFunctions::lookUpTable(const PinPlace &output)
{
    const CellModel &model = m_design.model(output);
    const Span<std::uint32_t> group = model.groups[model.pins[output.pin].group];
    const Verific::Instance &instance = m_design.instanceAt(output.context, output.cell);
    std::string_view contents;
    for (const char *parameter : {"INIT", "LUT_INIT", "LUT"}) {
        contents = contents.empty() ? parameterOf(instance, parameter) : contents;
    }
    unsigned outputs = 0;
    for (const CellModel::Pin &pin : model.pins) {
        outputs += pin.isOutput ? 1 : 0;
    }
    if (contents.empty() || outputs != 1 || contents.find_first_not_of("01") != std::string_view::npos ||
        contents.size() > (std::size_t{1} << group.size())) {
        return std::nullopt;
    }
    // The addresses are called I0, I1, … or A, B, …, the lowest first.
    TruthTable table;
    table.inputs = byName(model, group);
    for (std::size_t row = 0; row < contents.size(); ++row) {
        table.bits |= std::uint64_t{contents[contents.size() - 1 - row] == '1'} << row;
    }
    return table;
}

std::optional<TruthTable> CellFunctions::gate(const PinPlace &output, std::string_view type)
{
    const CellModel &model = m_design.model(output);
    const std::vector<std::uint32_t> inputs = byName(model, model.groups[model.pins[output.pin].group]);
    const auto found = gates().find(type);
    if (found != gates().end()) {
        return tabulate(inputs, found->second);
    }
    const std::size_t a = pinsNamed(model, inputs, "A").size();
    if (type == "$logic_and" || type == "$logic_or") {
        const bool isAnd = type == "$logic_and";
        return tabulate(inputs, [&](const std::vector<bool> &in) {
            const bool left = any({in.begin(), in.begin() + static_cast<std::ptrdiff_t>(a)});
            const bool right = any({in.begin() + static_cast<std::ptrdiff_t>(a), in.end()});
            return isAnd ? left && right : left || right;
        });
    }
    if (type == "$logic_not") {
        return tabulate(inputs, [](const std::vector<bool> &in) { return !any(in); });
    }
    if ((type == "$eq" || type == "$ne") && a * 2 == inputs.size()) {
        const bool isEqual = type == "$eq";
        return tabulate(inputs, [&](const std::vector<bool> &in) {
            return std::equal(in.begin(), in.begin() + static_cast<std::ptrdiff_t>(a),
                              in.begin() + static_cast<std::ptrdiff_t>(a)) == isEqual;
        });
    }
    if ((type == "$mux" || type == "$_MUX_" || type == "$_NMUX_") && inputs.size() == 3) {
        const bool inverts = type == "$_NMUX_";
        return tabulate(inputs, [&](const std::vector<bool> &in) { return (in[2] ? in[1] : in[0]) != inverts; });
    }
    return std::nullopt;
}

} // namespace kvr::netlistdb::analysis
