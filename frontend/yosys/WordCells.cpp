#include "WordCells.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_set>

namespace kvr::netlistdb::yosys {

namespace {

bool startsWith(std::string_view text, std::string_view prefix)
{
    return text.substr(0, prefix.size()) == prefix;
}

bool isOneOf(std::string_view text, std::initializer_list<std::string_view> all)
{
    return std::find(all.begin(), all.end(), text) != all.end();
}

bool isGate(std::string_view type)
{
    return startsWith(type, "$_") && type.size() > 3 && type.back() == '_';
}

/// Gates with a clock: `$_<kind>_<polarities>_`.
bool isClockedGate(std::string_view type)
{
    static constexpr std::array<std::string_view, 9> KINDS = {"DFF",   "DFFE",   "SDFF",  "SDFFE", "SDFFCE",
                                                              "ALDFF", "ALDFFE", "DFFSR", "DFFSRE"};
    const std::string_view kind = type.substr(2, type.find('_', 2) - 2);
    return std::find(KINDS.begin(), KINDS.end(), kind) != KINDS.end();
}

bool isFlipFlop(std::string_view type)
{
    return isOneOf(type, {"$dff", "$dffe", "$dffsr", "$dffsre", "$adff", "$adffe", "$aldff", "$aldffe", "$sdff",
                          "$sdffe", "$sdffce", "$fsm"});
}

/// A number of at most 64 bits, in decimal or in bits; 0 when it is neither.
std::uint64_t numberOf(std::string_view value)
{
    // Yosys writes numbers as at least 32 bits; with -compat-int, as decimal numbers.
    const bool bits = value.size() >= 32 && value.find_first_not_of("01xz") == std::string_view::npos;
    std::uint64_t number = 0;
    for (const char c : value) {
        if (c < '0' || c > '9') {
            return 0;
        }
        number = number * (bits ? 2 : 10) + static_cast<std::uint64_t>(c - '0');
    }
    return number;
}

/// The last @p ports bits of @p enables, '1' for every port with a clock, the last port first.
std::string clockedPorts(std::string_view enables, std::uint64_t ports)
{
    if (enables.size() >= ports) {
        return std::string(enables.substr(enables.size() - ports));
    }
    // A decimal number: of one port alone it says something.
    return ports == 1 && isNonZero(enables) ? "1" : "";
}

std::optional<MemoryPorts> memoryPorts(const ParameterLookup &parameter)
{
    constexpr std::uint64_t most = 0xFFFF;
    const std::uint64_t reads = numberOf(parameter("RD_PORTS"));
    const std::uint64_t writes = numberOf(parameter("WR_PORTS"));
    if (reads > most || writes > most) {
        return std::nullopt;
    }
    MemoryPorts ports;
    ports.reads = static_cast<unsigned>(reads);
    ports.writes = static_cast<unsigned>(writes);
    ports.clockedReads = clockedPorts(parameter("RD_CLK_ENABLE"), reads);
    ports.clockedWrites = clockedPorts(parameter("WR_CLK_ENABLE"), writes);
    const bool isClocked =
        ports.clockedReads.find('1') != std::string::npos || ports.clockedWrites.find('1') != std::string::npos;
    return isClocked ? std::optional<MemoryPorts>(std::move(ports)) : std::nullopt;
}

unsigned gateCode(std::string_view type)
{
    if (type == "$_BUF_") {
        return Verific::PRIM_BUF;
    }
    if (type == "$_NOT_") {
        return Verific::PRIM_INV;
    }
    if (type == "$_AND_") {
        return Verific::PRIM_AND;
    }
    if (type == "$_OR_") {
        return Verific::PRIM_OR;
    }
    if (type == "$_XOR_") {
        return Verific::PRIM_XOR;
    }
    if (type == "$_MUX_") {
        return Verific::PRIM_MUX;
    }
    if (type == "$_TBUF_") {
        return Verific::PRIM_TRI;
    }
    return Verific::PRIM_OTHER;
}

const std::unordered_set<std::string_view> &knownWordCells()
{
    static const std::unordered_set<std::string_view> cells = {
        "$not",        "$pos",       "$neg",        "$and",         "$or",          "$xor",    "$xnor",
        "$reduce_and", "$reduce_or", "$reduce_xor", "$reduce_xnor", "$reduce_bool", "$shl",    "$shr",
        "$sshl",       "$sshr",      "$shift",      "$shiftx",      "$lt",          "$le",     "$eq",
        "$ne",         "$eqx",       "$nex",        "$ge",          "$gt",          "$add",    "$sub",
        "$mul",        "$div",       "$mod",        "$divfloor",    "$modfloor",    "$pow",    "$logic_not",
        "$logic_and",  "$logic_or",  "$mux",        "$pmux",        "$bmux",        "$demux",  "$bweqx",
        "$bwmux",      "$slice",     "$concat",     "$lut",         "$sop",         "$tribuf", "$alu",
        "$lcu",        "$fa",        "$macc",       "$sr",          "$ff",          "$dff",    "$dffe",
        "$dffsr",      "$dffsre",    "$adff",       "$adffe",       "$aldff",       "$aldffe", "$sdff",
        "$sdffe",      "$sdffce",    "$dlatch",     "$adlatch",     "$dlatchsr",    "$memrd",  "$memrd_v2",
        "$memwr",      "$memwr_v2",  "$meminit",    "$meminit_v2",  "$mem",         "$mem_v2", "$fsm",
        "$equiv",      "$initstate", "$anyconst",   "$anyseq",      "$allconst",    "$allseq", "$buf",
    };
    return cells;
}

} // namespace

bool isAnnotation(std::string_view type)
{
    return isOneOf(type, {"$scopeinfo", "$specify2", "$specify3", "$specrule", "$print", "$check", "$assert", "$assume",
                          "$live", "$fair", "$cover"});
}

bool isNonZero(std::string_view value)
{
    return !value.empty() && value.find_first_not_of("0123456789xz") == std::string_view::npos &&
           value.find_first_of("123456789") != std::string_view::npos;
}

CellMeaning meaningOf(std::string_view type, const ParameterLookup &parameter)
{
    CellMeaning meaning;
    if (isGate(type)) {
        meaning.home = Home::Primitives;
        meaning.primitive = gateCode(type);
        if (meaning.primitive == Verific::PRIM_BUF || meaning.primitive == Verific::PRIM_INV) {
            meaning.input = "A";
        }
        if (isClockedGate(type)) {
            meaning.clock = "C";
        }
        return meaning;
    }
    const bool oneBitPos = type == "$pos" && numberOf(parameter("A_WIDTH")) == 1 && numberOf(parameter("Y_WIDTH")) == 1;
    if (oneBitPos || (type == "$buf" && numberOf(parameter("WIDTH")) == 1)) {
        meaning.home = Home::Primitives;
        meaning.primitive = Verific::PRIM_BUF;
        meaning.input = "A";
    } else if (isFlipFlop(type)) {
        meaning.clock = "CLK";
    } else if (isOneOf(type, {"$memrd", "$memrd_v2", "$memwr", "$memwr_v2"})) {
        meaning.clock = isNonZero(parameter("CLK_ENABLE")) ? "CLK" : "";
    } else if (isOneOf(type, {"$mem", "$mem_v2"})) {
        meaning.memory = memoryPorts(parameter);
    }
    return meaning;
}

unsigned directionOf(std::string_view type, std::string_view port)
{
    if (!isGate(type) && knownWordCells().count(type) == 0) {
        return Verific::DIR_NONE;
    }
    const bool memoryRead = isOneOf(type, {"$memrd", "$memrd_v2"});
    const bool output = isOneOf(port, {"Y", "Q", "CO", "RD_DATA", "CTRL_OUT"}) || (port == "DATA" && memoryRead) ||
                        (port == "X" && isOneOf(type, {"$alu", "$fa"}));
    return output ? Verific::DIR_OUT : Verific::DIR_IN;
}

} // namespace kvr::netlistdb::yosys
