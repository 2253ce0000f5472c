// Cells of other devices: those that most netlists are made of. What is not here is looked at as a black box.

#include "analysis/probe/DevicePieces.h"

#include <algorithm>

namespace kvr::netlistdb::analysis::probe {

namespace {

Slots numbered(const RecipeBuilder &cell, const std::string &name, int count)
{
    Slots slots;
    for (int at = 0; at < count; ++at) {
        slots.push_back(cell.pin(name + std::to_string(at), SLOT_UNKNOWN));
    }
    return slots;
}

/// SB_DFF with, in this order, N (falling edge), E (enable) and R, S, SR or SS (asynchronous, or synchronous with an S
/// in front).
bool ice40FlipFlop(RecipeBuilder &cell)
{
    std::string_view rest = cell.type().substr(6);
    DeviceFlipFlop pins{"C", "D", "Q", nullptr, nullptr, nullptr};
    const auto take = [&](std::string_view start) {
        const bool has = startsWith(rest, start);
        rest.remove_prefix(has ? start.size() : 0);
        return has;
    };
    pins.falls = take("N");
    pins.enable = take("E") ? "E" : nullptr;
    if (rest == "SR" || rest == "SS") {
        pins.sync = rest == "SR" ? "R" : "S";
    } else if (rest == "R" || rest == "S") {
        pins.async = rest == "R" ? "R" : "S";
    } else if (!rest.empty()) {
        return false;
    }
    pins.resetValue = !rest.empty() && rest.back() == 'S' ? '1' : '0';
    // Without its enable, a flip-flop of this family ignores a synchronous reset.
    pins.enableFirst = true;
    addDeviceFlipFlop(cell, pins);
    return true;
}

bool ice40Memory(RecipeBuilder &cell)
{
    if (cell.number("READ_MODE") != 0 || cell.number("WRITE_MODE") != 0) {
        return false;
    }
    std::string start;
    for (const char digit : std::string_view("FEDCBA9876543210")) {
        const std::string_view row = cell.parameter((std::string("INIT_") + digit).c_str());
        start += row.size() == 256 ? std::string(row) : std::string(256, '0');
    }
    const auto lowest = [](Slots slots) {
        slots.resize(std::min<std::size_t>(slots.size(), 8));
        return slots;
    };
    const std::uint16_t memory = addMemory(cell, 16, 8, start);
    const Slot read = cell.lut({cell.pin("RE", SLOT_ONE), cell.pin("RCLKE", SLOT_ONE)}, TABLE_AND);
    const Slot write = cell.lut({cell.pin("WE", SLOT_ONE), cell.pin("WCLKE", SLOT_ONE)}, TABLE_AND);
    Slots enables;
    for (const Slot mask : cell.port("MASK")) {
        enables.push_back(cell.lut({mask, write}, 4));
    }
    enables.resize(16, write);
    addClockedReadPort(cell, memory, cell.pin("RCLK", SLOT_UNKNOWN), read, SLOT_ZERO, lowest(cell.port("RADDR")),
                       cell.port("RDATA"));
    addWritePort(cell, memory, cell.pin("WCLK", SLOT_UNKNOWN), false, lowest(cell.port("WADDR")), cell.port("WDATA"),
                 enables);
    return true;
}

bool ice40Cell(RecipeBuilder &cell)
{
    const std::string_view type = cell.type();
    if (type == "SB_LUT4") {
        return addLookUpTable(cell, "I", "O", "LUT_INIT");
    }
    if (type == "SB_CARRY") {
        cell.lut({cell.pin("I0", SLOT_UNKNOWN), cell.pin("I1", SLOT_UNKNOWN), cell.pin("CI", SLOT_UNKNOWN)},
                 TABLE_MAJORITY, cell.pin("CO", SLOT_UNKNOWN));
        return true;
    }
    if (type == "SB_GB") {
        cell.recipe().kind = CellKind::Buffer;
        cell.join(cell.pin("GLOBAL_BUFFER_OUTPUT", SLOT_UNKNOWN),
                  cell.pin("USER_SIGNAL_TO_GLOBAL_BUFFER", SLOT_UNKNOWN));
        return true;
    }
    return type == "SB_RAM40_4K" ? ice40Memory(cell) : startsWith(type, "SB_DFF") && ice40FlipFlop(cell);
}

bool xilinxFlipFlop(RecipeBuilder &cell)
{
    const std::string_view type = cell.type();
    DeviceFlipFlop pins{"C", "D", "Q", "CE", nullptr, nullptr};
    const char *const reset = type == "FDRE" ? "R" : type == "FDSE" ? "S" : type == "FDCE" ? "CLR" : "PRE";
    (type == "FDRE" || type == "FDSE" ? pins.sync : pins.async) = reset;
    pins.resetValue = type == "FDSE" || type == "FDPE" ? '1' : '0';
    pins.falls = cell.flag("IS_C_INVERTED");
    pins.dataInverted = cell.flag("IS_D_INVERTED");
    pins.resetInverted = cell.flag((std::string("IS_") + reset + "_INVERTED").c_str());
    const std::string_view start = cell.parameter("INIT");
    pins.start = start.empty() ? pins.resetValue : isNonZero(start) ? '1' : '0';
    addDeviceFlipFlop(cell, pins);
    return true;
}

void carry4(RecipeBuilder &cell)
{
    cell.recipe().kind = CellKind::Logic;
    const Slots s = cell.port("S"), di = cell.port("DI"), o = cell.port("O"), co = cell.port("CO");
    Slot carry = cell.lut({cell.pin("CI", SLOT_ZERO), cell.pin("CYINIT", SLOT_ZERO)}, TABLE_OR);
    for (std::size_t at = 0; at < 4 && at < s.size() && at < di.size() && at < o.size() && at < co.size(); ++at) {
        cell.lut({s[at], carry}, TABLE_XOR, o[at]);
        cell.lut({di[at], carry, s[at]}, TABLE_CHOOSE, co[at]);
        carry = co[at];
    }
}

/// RAM32M and RAM64M: four arrays with one write address, that of the last.
void quadMemory(RecipeBuilder &cell, std::uint32_t width, std::uint32_t addressBits)
{
    const bool falls = cell.flag("IS_WCLK_INVERTED");
    for (const std::string letter : {"A", "B", "C", "D"}) {
        const std::uint16_t memory = addMemory(cell, width, addressBits, cell.parameter(("INIT_" + letter).c_str()));
        addReadPort(cell, memory, cell.port("ADDR" + letter), cell.port("DO" + letter));
        addWritePort(cell, memory, cell.pin("WCLK", SLOT_UNKNOWN), falls, cell.port("ADDRD"), cell.port("DI" + letter),
                     Slots(width, cell.pin("WE", SLOT_ONE)));
    }
}

void dualMemory(RecipeBuilder &cell, int addressBits)
{
    const std::uint16_t memory = addMemory(cell, 1, static_cast<std::uint32_t>(addressBits), cell.parameter("INIT"));
    const Slots own = cell.port("A").empty() ? numbered(cell, "A", addressBits) : cell.port("A");
    const Slots other = cell.port("DPRA").empty() ? numbered(cell, "DPRA", addressBits) : cell.port("DPRA");
    addReadPort(cell, memory, own, cell.port("SPO"));
    addReadPort(cell, memory, other, cell.port("DPO"));
    addWritePort(cell, memory, cell.pin("WCLK", SLOT_UNKNOWN), cell.flag("IS_WCLK_INVERTED"), own, cell.port("D"),
                 {cell.pin("WE", SLOT_ONE)});
}

bool xilinxCell(RecipeBuilder &cell)
{
    const std::string_view type = cell.type();
    if (type.size() == 4 && startsWith(type, "LUT") && type[3] >= '1' && type[3] <= '6' && !cell.port("I0").empty()) {
        return addLookUpTable(cell, "I", "O", "INIT");
    }
    if (isOneOf(type, {"FDRE", "FDSE", "FDCE", "FDPE"})) {
        return xilinxFlipFlop(cell);
    }
    if (type == "CARRY4") {
        carry4(cell);
    } else if (isOneOf(type, {"MUXF5", "MUXF6", "MUXF7", "MUXF8", "MUXF9"})) {
        cell.lut({cell.pin("I0", SLOT_UNKNOWN), cell.pin("I1", SLOT_UNKNOWN), cell.pin("S", SLOT_UNKNOWN)},
                 TABLE_CHOOSE, cell.pin("O", SLOT_UNKNOWN));
    } else if (type == "INV") {
        cell.lut({cell.pin("I", SLOT_UNKNOWN)}, 1, cell.pin("O", SLOT_UNKNOWN));
    } else if (type == "SRL16E") {
        addShiftRegister(cell, numbered(cell, "A", 4), {"CLK", "CE", "D", "Q"}, cell.flag("IS_CLK_INVERTED"));
    } else if (type == "SRLC32E") {
        addShiftRegister(cell, cell.port("A"), {"CLK", "CE", "D", "Q"}, cell.flag("IS_CLK_INVERTED"), "Q31");
    } else if (isOneOf(type, {"IBUF", "OBUF", "BUFG", "IBUFG", "BUFH", "BUFR"})) {
        cell.recipe().kind = type.find("BUFG") != std::string_view::npos ? CellKind::Buffer : CellKind::Pad;
        cell.join(cell.pin("O", SLOT_UNKNOWN), cell.pin("I", SLOT_UNKNOWN));
    } else if (type == "RAM32M") {
        quadMemory(cell, 2, 5);
    } else if (type == "RAM64M") {
        quadMemory(cell, 1, 6);
    } else if (isOneOf(type, {"RAM32X1D", "RAM64X1D", "RAM128X1D"})) {
        dualMemory(cell, type == "RAM32X1D" ? 5 : type == "RAM64X1D" ? 6 : 7);
    } else {
        return false;
    }
    return true;
}

bool ecp5Cell(RecipeBuilder &cell)
{
    const std::string_view type = cell.type();
    if (type == "LUT4" && !cell.port("A").empty()) {
        return addLookUpTable(cell, "ABCD", "Z", "INIT");
    }
    if (type == "PFUMX") {
        cell.lut({cell.pin("BLUT", SLOT_UNKNOWN), cell.pin("ALUT", SLOT_UNKNOWN), cell.pin("C0", SLOT_UNKNOWN)},
                 TABLE_CHOOSE, cell.pin("Z", SLOT_UNKNOWN));
    } else if (type == "L6MUX21") {
        cell.lut({cell.pin("D0", SLOT_UNKNOWN), cell.pin("D1", SLOT_UNKNOWN), cell.pin("SD", SLOT_UNKNOWN)},
                 TABLE_CHOOSE, cell.pin("Z", SLOT_UNKNOWN));
    } else {
        return false;
    }
    return true;
}

} // namespace

bool addDeviceCell(RecipeBuilder &cell)
{
    const std::string_view type = cell.type();
    if (isOneOf(type, {"VCC", "VHI", "GND", "VLO"}) && cell.cell().inputs().empty()) {
        return addConstant(cell, type.front() == 'V' && type != "VLO");
    }
    return ice40Cell(cell) || xilinxCell(cell) || ecp5Cell(cell);
}

} // namespace kvr::netlistdb::analysis::probe
