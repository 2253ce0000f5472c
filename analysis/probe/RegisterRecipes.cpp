// Flip-flops, latches and gates of yosys.

#include "analysis/probe/RecipeBuilder.h"

#include <algorithm>

namespace kvr::netlistdb::analysis::probe {

namespace {

/// The bits of a parameter, the lowest first.
std::string valueOf(std::string_view value, std::size_t width)
{
    std::string bits;
    const bool isText = value.find_first_not_of("01xz") == std::string_view::npos;
    for (std::size_t at = 0; at < width; ++at) {
        const bool isUnknown = isText && (at >= value.size() || value[value.size() - 1 - at] == 'x' ||
                                          value[value.size() - 1 - at] == 'z');
        bits += isUnknown ? 'x' : bitOf(value, at) ? '1' : '0';
    }
    return bits;
}

/// A control pin that acts when it is high, whatever its polarity.
Slot active(RecipeBuilder &cell, const char *pin, const char *polarity, Slot missing)
{
    const Slot slot = cell.pin(pin, missing);
    const std::string_view value = cell.parameter(polarity);
    return slot == missing ? slot : cell.invertedIf(!value.empty() && !isNonZero(value), slot);
}

Slots activeAll(RecipeBuilder &cell, const char *port, const char *polarity)
{
    Slots slots = cell.port(port);
    const std::string_view value = cell.parameter(polarity);
    for (Slot &slot : slots) {
        slot = cell.invertedIf(!value.empty() && !isNonZero(value), slot);
    }
    return slots;
}

void flipFlop(RecipeBuilder &cell)
{
    cell.recipe().kind = CellKind::FlipFlop;
    const Slots q = cell.port("Q");
    const std::string_view type = cell.type();
    const bool loads = startsWith(type, "$aldff");
    const bool setsClears = startsWith(type, "$dffsr");
    const Slot enable = active(cell, "EN", "EN_POLARITY", SLOT_ONE);
    const Slot sync = active(cell, "SRST", "SRST_POLARITY", SLOT_ZERO);
    const Slot async =
        loads ? active(cell, "ALOAD", "ALOAD_POLARITY", SLOT_ZERO) : active(cell, "ARST", "ARST_POLARITY", SLOT_ZERO);
    const Slots load = loads ? cell.port("AD") : Slots();
    const Slots set = setsClears ? activeAll(cell, "SET", "SET_POLARITY") : Slots();
    const Slots clear = setsClears ? activeAll(cell, "CLR", "CLR_POLARITY") : Slots();
    Part &part = cell.add(Op::FlipFlop,
                          {{cell.pin("CLK", SLOT_UNKNOWN), enable, sync, async}, cell.port("D"), load, set, clear, q});
    const std::string_view polarity = cell.parameter("CLK_POLARITY");
    part.width = static_cast<std::uint32_t>(q.size());
    part.flags = static_cast<std::uint16_t>((!polarity.empty() && !isNonZero(polarity) ? PART_FALLING : 0) |
                                            (loads ? PART_LOADS : 0) | (setsClears ? PART_SETS_CLEARS : 0) |
                                            (type == "$sdffce" ? PART_ENABLE_FIRST : 0));
    part.reset = valueOf(cell.parameter(sync != SLOT_ZERO ? "SRST_VALUE" : "ARST_VALUE"), q.size());
}

void latch(RecipeBuilder &cell)
{
    cell.recipe().kind = CellKind::Latch;
    const Slots q = cell.port("Q");
    const bool setsClears = !cell.port("SET").empty();
    const Slot enable = active(cell, "EN", "EN_POLARITY", cell.port("D").empty() ? SLOT_ZERO : SLOT_ONE);
    const Slot reset = active(cell, "ARST", "ARST_POLARITY", SLOT_ZERO);
    const Slots set = activeAll(cell, "SET", "SET_POLARITY");
    const Slots clear = activeAll(cell, "CLR", "CLR_POLARITY");
    Slots d = cell.port("D");
    d.resize(q.size(), SLOT_ZERO);
    Part &part = cell.add(Op::Latch, {{enable, reset}, d, set, clear, q});
    part.width = static_cast<std::uint32_t>(q.size());
    part.flags = setsClears ? PART_SETS_CLEARS : 0;
    part.reset = valueOf(cell.parameter("ARST_VALUE"), q.size());
}

/// `$_DFF_P_` and its like: the letters behind the kind are the polarities of clock, reset or set and clear, the value
/// of the reset, and the polarity of the enable, as far as the cell has them.
bool gateRegister(RecipeBuilder &cell, std::string_view kind, std::string_view letters)
{
    const bool isLatch = startsWith(kind, "DLATCH");
    const bool isLoad = startsWith(kind, "ALDFF");
    const bool setsClears = kind == "DFFSR" || kind == "DFFSRE" || kind == "DLATCHSR";
    const bool isSync = startsWith(kind, "SDFF");
    const bool hasEnable = kind.back() == 'E' && !isLatch;
    std::size_t at = 0;
    const auto next = [&] { return at < letters.size() ? letters[at++] : 'P'; };
    const auto pin = [&](const char *name, char polarity) {
        return cell.invertedIf(polarity == 'N', cell.pin(name, SLOT_UNKNOWN));
    };
    const bool falls = !isLatch && next() == 'N';
    const Slot gate = isLatch ? pin("E", next()) : SLOT_ONE;
    Slot sync = SLOT_ZERO;
    Slot async = SLOT_ZERO;
    std::string reset = "x";
    Slots more;
    if (setsClears) {
        const Slot set = pin("S", next());
        more = {set, pin("R", next())};
    } else if (isLoad) {
        async = pin("L", next());
        more = {cell.pin("AD", SLOT_UNKNOWN)};
    } else if (letters.size() - at >= 2) {
        (isSync ? sync : async) = pin("R", next());
        reset = std::string(1, next());
    }
    const Slot enable = hasEnable ? pin("E", next()) : SLOT_ONE;
    const Slot d = cell.pin("D", SLOT_UNKNOWN);
    const Slot q = cell.pin("Q", SLOT_UNKNOWN);
    cell.recipe().kind = isLatch ? CellKind::Latch : CellKind::FlipFlop;
    Part &part = isLatch ? cell.add(Op::Latch, {{gate, async, d}, more, {q}})
                         : cell.add(Op::FlipFlop, {{cell.pin("C", SLOT_UNKNOWN), enable, sync, async, d}, more, {q}});
    part.reset = reset;
    part.flags =
        static_cast<std::uint16_t>((falls ? PART_FALLING : 0) | (isLoad ? PART_LOADS : 0) |
                                   (setsClears ? PART_SETS_CLEARS : 0) | (kind == "SDFFCE" ? PART_ENABLE_FIRST : 0));
    return true;
}

struct Gate {
    const char *type;
    const char *pins;
    std::uint64_t table;
};

constexpr Gate GATES[] = {
    {"$_NOT_", "A", 1},       {"$_AND_", "AB", 8},         {"$_NAND_", "AB", 7},        {"$_OR_", "AB", 14},
    {"$_NOR_", "AB", 1},      {"$_XOR_", "AB", 6},         {"$_XNOR_", "AB", 9},        {"$_ANDNOT_", "AB", 2},
    {"$_ORNOT_", "AB", 11},   {"$_MUX_", "ABS", 0xCA},     {"$_NMUX_", "ABS", 0x35},    {"$_AOI3_", "ABC", 0x07},
    {"$_OAI3_", "ABC", 0x1F}, {"$_AOI4_", "ABCD", 0x0777}, {"$_OAI4_", "ABCD", 0x111F},
};

} // namespace

bool addWordRegister(RecipeBuilder &cell)
{
    const std::string_view type = cell.type();
    static constexpr std::string_view flipFlops[] = {"$dff",   "$dffe",   "$dffsr", "$dffsre", "$adff",  "$adffe",
                                                     "$aldff", "$aldffe", "$sdff",  "$sdffe",  "$sdffce"};
    static constexpr std::string_view latches[] = {"$dlatch", "$adlatch", "$dlatchsr", "$sr"};
    if (std::find(std::begin(flipFlops), std::end(flipFlops), type) != std::end(flipFlops)) {
        flipFlop(cell);
    } else if (std::find(std::begin(latches), std::end(latches), type) != std::end(latches)) {
        latch(cell);
    } else {
        return false;
    }
    return true;
}

bool addGate(RecipeBuilder &cell)
{
    const std::string_view type = cell.type();
    if (type == "$_BUF_") {
        cell.join(cell.pin("Y", SLOT_UNKNOWN), cell.pin("A", SLOT_UNKNOWN));
        return true;
    }
    if (type == "$_TBUF_") {
        cell.lut({SLOT_UNKNOWN, cell.pin("A", SLOT_UNKNOWN), cell.pin("E", SLOT_UNKNOWN)}, TABLE_CHOOSE,
                 cell.pin("Y", SLOT_UNKNOWN));
        return true;
    }
    for (const Gate &gate : GATES) {
        if (type == gate.type) {
            Slots inputs;
            for (const char *name = gate.pins; *name != '\0'; ++name) {
                inputs.push_back(cell.pin(std::string_view(name, 1), SLOT_UNKNOWN));
            }
            cell.lut(inputs, gate.table, cell.pin("Y", SLOT_UNKNOWN));
            return true;
        }
    }
    const std::size_t end = type.find('_', 2);
    if (!startsWith(type, "$_") || end == std::string_view::npos || type.back() != '_' || end + 1 >= type.size()) {
        return false;
    }
    const std::string_view kind = type.substr(2, end - 2);
    static constexpr std::string_view registers[] = {"DFF",    "DFFE",  "SDFF",   "SDFFE",  "SDFFCE",  "ALDFF",
                                                     "ALDFFE", "DFFSR", "DFFSRE", "DLATCH", "DLATCHSR"};
    return std::find(std::begin(registers), std::end(registers), kind) != std::end(registers) &&
           gateRegister(cell, kind, type.substr(end + 1, type.size() - end - 2));
}

} // namespace kvr::netlistdb::analysis::probe
