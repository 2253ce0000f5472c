// Which bits of the operands of a word-level operator, or of the pins of a gate, reach which bits of its result.

#include "analysis/WordCells.h"

#include <DataBase.h>

#include <algorithm>
#include <iterator>
#include <unordered_map>

namespace kvr::netlistdb::analysis {

namespace {

/// Adds bit @p at of an operand as the operator extends it: with its sign, or with zeros.
void addBit(PinList &to, const PinList &operand, std::uint64_t at, bool isSigned)
{
    if (at < operand.size()) {
        to.push_back(operand[static_cast<std::size_t>(at)]);
    } else if (isSigned && !operand.empty()) {
        to.push_back(operand.back());
    }
}

/// Every bit of Y depends on the bits of the operands at the same place, and on all of @p common.
void bitwise(ModelBuilder &cell, const char *result, std::initializer_list<const char *> operands,
             const PinList &common = {})
{
    // Operands are extended with the sign only when all of them are signed.
    const bool isSigned =
        isNonZero(cell.parameter("A_SIGNED")) && (operands.size() == 1 || isNonZero(cell.parameter("B_SIGNED")));
    const PinList &outputs = cell.port(result);
    for (std::size_t at = 0; at < outputs.size(); ++at) {
        PinList inputs;
        for (const char *operand : operands) {
            addBit(inputs, cell.port(operand), at, isSigned);
        }
        inputs.insert(inputs.end(), common.begin(), common.end());
        cell.reach({outputs[at]}, inputs);
    }
}

/// Bit @p at of Y is the bit of A that @p bitOfA returns; its place may lie outside A.
template <typename BitOfA> void wiring(ModelBuilder &cell, bool isSigned, bool inverts, BitOfA bitOfA)
{
    cell.setKind(CellKind::Buffer);
    const PinList &outputs = cell.port("Y");
    for (std::size_t at = 0; at < outputs.size(); ++at) {
        PinList input;
        addBit(input, cell.port("A"), bitOfA(static_cast<std::uint64_t>(at)), isSigned);
        cell.reach({outputs[at]}, input);
        if (!input.empty()) {
            cell.markPass(outputs[at], input.front(), inverts);
        }
    }
}

constexpr std::uint64_t OUTSIDE = 1ULL << 62; ///< a place of a bit beyond any operand

void buffer(ModelBuilder &cell)
{
    wiring(cell, isNonZero(cell.parameter("A_SIGNED")), false, [](std::uint64_t at) { return at; });
}

void inverter(ModelBuilder &cell)
{
    wiring(cell, isNonZero(cell.parameter("A_SIGNED")), true, [](std::uint64_t at) { return at; });
}

void slice(ModelBuilder &cell)
{
    const std::uint64_t offset = numberOf(cell.parameter("OFFSET"));
    wiring(cell, false, false, [&](std::uint64_t at) { return at + offset; });
}

void concat(ModelBuilder &cell)
{
    cell.setKind(CellKind::Buffer);
    PinList bits = cell.port("A");
    bits.insert(bits.end(), cell.port("B").begin(), cell.port("B").end());
    const PinList &outputs = cell.port("Y");
    for (std::size_t at = 0; at < outputs.size(); ++at) {
        if (at < bits.size()) {
            cell.pass(outputs[at], bits[at], false);
        } else {
            cell.reach({outputs[at]}, {});
        }
    }
}

void logicNot(ModelBuilder &cell)
{
    wholeLogic(cell);
    if (cell.port("A").size() == 1 && cell.port("Y").size() == 1) {
        cell.setKind(CellKind::Buffer);
        cell.markPass(cell.port("Y").front(), cell.port("A").front(), true);
    }
}

void shift(ModelBuilder &cell, const ConstantShift &amount)
{
    if (!amount) {
        wholeLogic(cell);
        return;
    }
    const bool isSigned = isNonZero(cell.parameter("A_SIGNED"));
    const std::string_view type = cell.type();
    const bool left = type == "$shl" || type == "$sshl" || *amount < 0;
    const auto distance = static_cast<std::uint64_t>(*amount < 0 ? -*amount : *amount);
    if (left) {
        // The operand is extended to the width of the result first.
        wiring(cell, isSigned, false, [&](std::uint64_t at) { return at >= distance ? at - distance : OUTSIDE; });
        const PinList &outputs = cell.port("Y");
        for (std::size_t at = 0; at < std::min<std::uint64_t>(distance, outputs.size()); ++at) {
            cell.reach({outputs[at]}, {});
            cell.markPass(outputs[at], NONE, false);
        }
        return;
    }
    const std::uint64_t width = std::max(cell.port("A").size(), cell.port("Y").size());
    const bool keepsSign = type == "$sshr" && isSigned;
    const PinList &outputs = cell.port("Y");
    cell.setKind(CellKind::Buffer);
    for (std::size_t at = 0; at < outputs.size(); ++at) {
        PinList input;
        const std::uint64_t from = distance < OUTSIDE ? at + distance : OUTSIDE;
        addBit(input, cell.port("A"), from, keepsSign || (isSigned && from < width));
        cell.reach({outputs[at]}, input);
        if (!input.empty()) {
            cell.markPass(outputs[at], input.front(), false);
        }
    }
}

void multiplexer(ModelBuilder &cell)
{
    cell.setKind(CellKind::Multiplexer);
    const PinList &select = cell.port("S");
    cell.setRole(select, PinRole::Select);
    const PinList &a = cell.port("A");
    const PinList &b = cell.port("B");
    const PinList &outputs = cell.port("Y");
    for (std::size_t at = 0; at < outputs.size(); ++at) {
        PinList inputs;
        // $bmux has all words in A, $pmux all but one in B.
        for (std::size_t bit = at; bit < a.size(); bit += outputs.size()) {
            inputs.push_back(a[bit]);
        }
        for (std::size_t bit = at; bit < b.size(); bit += outputs.size()) {
            inputs.push_back(b[bit]);
        }
        inputs.insert(inputs.end(), select.begin(), select.end());
        cell.reach({outputs[at]}, inputs);
    }
}

void demultiplexer(ModelBuilder &cell)
{
    cell.setKind(CellKind::Multiplexer);
    const PinList &select = cell.port("S");
    cell.setRole(select, PinRole::Select);
    const PinList &a = cell.port("A");
    const PinList &outputs = cell.port("Y");
    for (std::size_t at = 0; at < outputs.size(); ++at) {
        PinList inputs;
        if (!a.empty()) {
            inputs.push_back(a[at % a.size()]);
        }
        inputs.insert(inputs.end(), select.begin(), select.end());
        cell.reach({outputs[at]}, inputs);
    }
}

void fullAdder(ModelBuilder &cell)
{
    bitwise(cell, "X", {"A", "B", "C"});
    bitwise(cell, "Y", {"A", "B", "C"});
}

void bitwiseMultiplexer(ModelBuilder &cell)
{
    cell.setKind(CellKind::Multiplexer);
    cell.setRole(cell.port("S"), PinRole::Select);
    bitwise(cell, "Y", {"A", "B", "S"});
}

void gateMultiplexer(ModelBuilder &cell)
{
    wholeLogic(cell);
    cell.setKind(CellKind::Multiplexer);
    for (const char *select : {"S", "T", "U", "V"}) {
        cell.setRole(cell.port(select), PinRole::Select);
    }
}

using Operator = void (*)(ModelBuilder &);

const std::unordered_map<std::string_view, Operator> &operators()
{
    static const std::unordered_map<std::string_view, Operator> table = {
        {"$pos", buffer},
        {"$buf", buffer},
        {"$not", inverter},
        {"$_BUF_", buffer},
        {"$_NOT_", inverter},
        {"$logic_not", logicNot},
        {"$slice", slice},
        {"$concat", concat},
        {"$and",
         [](ModelBuilder &cell) {
             bitwise(cell, "Y", {"A", "B"});
         }},
        {"$or",
         [](ModelBuilder &cell) {
             bitwise(cell, "Y", {"A", "B"});
         }},
        {"$xor",
         [](ModelBuilder &cell) {
             bitwise(cell, "Y", {"A", "B"});
         }},
        {"$xnor",
         [](ModelBuilder &cell) {
             bitwise(cell, "Y", {"A", "B"});
         }},
        {"$bweqx",
         [](ModelBuilder &cell) {
             bitwise(cell, "Y", {"A", "B"});
         }},
        {"$tribuf", [](ModelBuilder &cell) { bitwise(cell, "Y", {"A"}, cell.port("EN")); }},
        {"$fa", fullAdder},
        {"$mux", multiplexer},
        {"$pmux", multiplexer},
        {"$bmux", multiplexer},
        {"$bwmux", bitwiseMultiplexer},
        {"$demux", demultiplexer},
        {"$_MUX_", gateMultiplexer},
        {"$_NMUX_", gateMultiplexer},
        {"$_MUX4_", gateMultiplexer},
        {"$_MUX8_", gateMultiplexer},
        {"$_MUX16_", gateMultiplexer},
    };
    return table;
}

} // namespace

void wholeLogic(ModelBuilder &cell)
{
    cell.setKind(CellKind::Logic);
    const PinList inputs = cell.inputs();
    PinList outputs;
    for (const std::uint32_t output : cell.outputs()) {
        if (!cell.isInput(output)) {
            outputs.push_back(output);
            continue;
        }
        // What comes in through a pin does not come out of it again.
        PinList others;
        std::copy_if(inputs.begin(), inputs.end(), std::back_inserter(others),
                     [&](std::uint32_t input) { return input != output; });
        cell.reach({output}, others);
    }
    cell.reach(outputs, inputs);
}

bool isShift(std::string_view type)
{
    return type == "$shl" || type == "$shr" || type == "$sshl" || type == "$sshr" || type == "$shift" ||
           type == "$shiftx";
}

void buildWordOperator(ModelBuilder &cell, const ConstantShift &amount)
{
    const std::string_view type = cell.type();
    if (startsWith(type, "$any") || startsWith(type, "$all") || type == "$initstate") {
        cell.setKind(CellKind::BlackBox);
        return;
    }
    if (isShift(type)) {
        shift(cell, amount);
        return;
    }
    const auto found = operators().find(type);
    if (found != operators().end()) {
        cell.setKind(CellKind::Logic);
        found->second(cell);
    } else {
        wholeLogic(cell);
    }
}

} // namespace kvr::netlistdb::analysis
