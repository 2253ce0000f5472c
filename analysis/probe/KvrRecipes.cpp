// Cells of the KVR library.

#include "analysis/probe/DevicePieces.h"

namespace kvr::netlistdb::analysis::probe {

namespace {

void doubleRateInput(RecipeBuilder &cell)
{
    cell.recipe().kind = CellKind::Ddr;
    const Slot clock = cell.pin("C", SLOT_UNKNOWN);
    const Slot d = cell.pin("D", SLOT_UNKNOWN);
    const Slot rise = cell.inner();
    const Slot fall = cell.inner();
    cell.flipFlop(clock, false, d, rise, '0');
    cell.flipFlop(clock, true, d, fall, '0');
    cell.flipFlop(clock, false, rise, cell.pin("Q0", SLOT_UNKNOWN), '0');
    cell.flipFlop(clock, false, fall, cell.pin("Q1", SLOT_UNKNOWN), '0');
}

void doubleRateOutput(RecipeBuilder &cell)
{
    cell.recipe().kind = CellKind::Ddr;
    const Slot clock = cell.pin("C", SLOT_UNKNOWN);
    const Slot rise = cell.inner();
    const Slot fall = cell.inner();
    cell.flipFlop(clock, false, cell.pin("D0", SLOT_UNKNOWN), rise, '0');
    cell.flipFlop(clock, false, cell.pin("D1", SLOT_UNKNOWN), fall, '0');
    cell.lut({fall, rise, clock}, TABLE_CHOOSE, cell.pin("Q", SLOT_UNKNOWN));
}

/// The enable is taken over while the clock is low.
void gatedBuffer(RecipeBuilder &cell)
{
    cell.recipe().kind = CellKind::ClockGate;
    const Slot clock = cell.pin("I", SLOT_UNKNOWN);
    const Slot enable = cell.inner();
    cell.flipFlop(clock, true, cell.pin("CE", SLOT_ONE), enable, '1');
    cell.lut({clock, enable}, TABLE_AND, cell.pin("O", SLOT_UNKNOWN));
}

void multiplier(RecipeBuilder &cell)
{
    cell.recipe().kind = CellKind::Dsp;
    const Slots p = cell.port("P");
    Part &part = cell.add(Op::MultiplyAdd, {{cell.pin("CLK", SLOT_UNKNOWN), cell.pin("CE", SLOT_ONE)},
                                            cell.extended("A", p.size(), true),
                                            cell.extended("B", p.size(), true),
                                            cell.extended("C", p.size(), true),
                                            p});
    part.width = static_cast<std::uint32_t>(p.size());
}

void distributedMemory(RecipeBuilder &cell)
{
    const std::uint16_t memory = addMemory(cell, 4, 4, cell.parameter("INIT"));
    addWritePort(cell, memory, cell.pin("W_CLK", SLOT_UNKNOWN), false, cell.port("W_ADDR"), cell.port("W_DATA"),
                 Slots(4, cell.pin("W_EN", SLOT_ONE)));
    addReadPort(cell, memory, cell.port("R_ADDR"), cell.port("R_DATA"));
}

void blockMemory(RecipeBuilder &cell)
{
    const std::uint16_t memory = addMemory(cell, 18, 9, cell.parameter("INIT"));
    addClockedReadPort(cell, memory, cell.pin("R_CLK", SLOT_UNKNOWN), cell.pin("R_EN", SLOT_ONE), SLOT_ZERO,
                       cell.port("R_ADDR"), cell.port("R_DATA"));
    addWritePort(cell, memory, cell.pin("W_CLK", SLOT_UNKNOWN), false, cell.port("W_ADDR"), cell.port("W_DATA"),
                 Slots(18, cell.pin("W_EN", SLOT_ONE)));
}

void dualPortMemory(RecipeBuilder &cell)
{
    const std::uint16_t memory = addMemory(cell, 8, 9, cell.parameter("INIT"));
    for (const std::string side : {"A", "B"}) {
        Slots in;
        Slots out;
        for (int bit = 0; bit < 8; ++bit) {
            in.push_back(cell.pin("DIN" + std::to_string(bit) + "_" + side, SLOT_UNKNOWN));
            out.push_back(cell.pin("DOUT" + std::to_string(bit) + "_" + side, SLOT_UNKNOWN));
        }
        const Slot clock = cell.pin("CLK_" + side, SLOT_UNKNOWN);
        const Slot enable = cell.pin("EN_" + side, SLOT_ONE);
        const Slot write = cell.pin("WE_" + side, SLOT_ZERO);
        addClockedReadPort(cell, memory, clock, enable, write, cell.port("ADDR_" + side), out);
        addWritePort(cell, memory, clock, false, cell.port("ADDR_" + side), in,
                     Slots(8, cell.lut({enable, write}, TABLE_AND)));
    }
}

} // namespace

bool addKvrCell(RecipeBuilder &cell)
{
    const std::string_view type = cell.type();
    if (startsWith(type, "KVR_LUT")) {
        return addLookUpTable(cell, "I", "O", "INIT");
    }
    if (type == "KVR_FF") {
        DeviceFlipFlop pins{"C", "D", "Q", "E", nullptr, nullptr};
        (cell.flag("R_ASYNC") ? pins.async : pins.sync) = "R";
        pins.falls = cell.flag("C_INVERTED");
        pins.resetInverted = cell.flag("R_INVERTED");
        pins.resetValue = cell.flag("RESET_VALUE") ? '1' : '0';
        pins.start = cell.flag("INIT") ? '1' : '0';
        addDeviceFlipFlop(cell, pins);
    } else if (type == "KVR_SRL16" || type == "KVR_SRL32") {
        addShiftRegister(cell, cell.port("A"), {"C", "E", "D", "Q"}, cell.flag("C_INVERTED"));
    } else if (type == "KVR_RAMD16X4") {
        distributedMemory(cell);
    } else if (type == "KVR_RAM512X18") {
        blockMemory(cell);
    } else if (type == "KVR_DPRAM512X8") {
        dualPortMemory(cell);
    } else if (type == "KVR_MULT" || type == "KVR_DSP48") {
        multiplier(cell);
    } else if (type == "KVR_IDDR") {
        doubleRateInput(cell);
    } else if (type == "KVR_ODDR") {
        doubleRateOutput(cell);
    } else if (type == "KVR_GBUFCE") {
        gatedBuffer(cell);
    } else if (type == "KVR_IBUF" || type == "KVR_OBUF") {
        cell.recipe().kind = CellKind::Pad;
        cell.join(cell.pin("O", SLOT_UNKNOWN), cell.pin("I", SLOT_UNKNOWN));
    } else if (type == "KVR_IOBUF") {
        cell.recipe().kind = CellKind::Pad;
        const Slot pad = cell.pin("IO", SLOT_UNKNOWN);
        cell.lut({SLOT_UNKNOWN, cell.pin("I", SLOT_UNKNOWN), cell.pin("OE", SLOT_ZERO)}, TABLE_CHOOSE, pad);
        cell.join(cell.pin("O", SLOT_UNKNOWN), pad);
    } else if (type == "KVR_VCC" || type == "KVR_GND") {
        return addConstant(cell, type == "KVR_VCC");
    } else {
        return false;
    }
    return true;
}

} // namespace kvr::netlistdb::analysis::probe
