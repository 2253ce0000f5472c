#include "analysis/probe/DevicePieces.h"

#include <algorithm>

namespace kvr::netlistdb::analysis::probe {

void addDeviceFlipFlop(RecipeBuilder &cell, const DeviceFlipFlop &pins)
{
    cell.recipe().kind = CellKind::FlipFlop;
    const auto reset = [&](const char *name) {
        return name != nullptr ? cell.invertedIf(pins.resetInverted, cell.pin(name, SLOT_ZERO)) : SLOT_ZERO;
    };
    const Slot enable = pins.enable != nullptr ? cell.pin(pins.enable, SLOT_ONE) : SLOT_ONE;
    const Slot sync = reset(pins.sync);
    const Slot async = reset(pins.async);
    const Slot d = cell.invertedIf(pins.dataInverted, cell.pin(pins.d, SLOT_UNKNOWN));
    Part &part = cell.add(
        Op::FlipFlop, {{cell.pin(pins.clock, SLOT_UNKNOWN), enable, sync, async, d, cell.pin(pins.q, SLOT_UNKNOWN)}});
    part.flags =
        static_cast<std::uint16_t>((pins.falls ? PART_FALLING : 0) | (pins.enableFirst ? PART_ENABLE_FIRST : 0));
    part.reset = std::string(1, pins.resetValue);
    part.start = std::string(1, pins.start);
}

bool addLookUpTable(RecipeBuilder &cell, std::string_view inputs, const char *output, const char *contents)
{
    Slots slots;
    for (std::size_t at = 0; at < 6; ++at) {
        const std::string name =
            inputs.size() == 1 ? std::string(inputs) + std::to_string(at) : std::string(inputs.substr(at, 1));
        const Slot slot = name.empty() ? SLOT_UNKNOWN : cell.pin(name, SLOT_UNKNOWN);
        if (slot == SLOT_UNKNOWN) {
            break;
        }
        slots.push_back(slot);
    }
    const std::string_view value = cell.parameter(contents);
    if (slots.empty() || value.empty() || cell.pin(output, SLOT_UNKNOWN) == SLOT_UNKNOWN) {
        return false;
    }
    std::uint64_t table = 0;
    for (std::size_t at = 0; at < std::size_t{1} << slots.size(); ++at) {
        table |= std::uint64_t{bitOf(value, at)} << at;
    }
    cell.lut(slots, table, cell.pin(output, SLOT_UNKNOWN));
    return true;
}

void addShiftRegister(RecipeBuilder &cell, const Slots &address, const ShiftRegisterPins &pins, bool falls,
                      const char *last)
{
    cell.recipe().kind = CellKind::ShiftRegister;
    const auto stages = std::uint32_t{1} << std::min<std::size_t>(address.size(), 5);
    Part &shift = cell.add(Op::ShiftRegister, {{cell.pin(pins.clock, SLOT_UNKNOWN), cell.pin(pins.enable, SLOT_ONE),
                                                cell.pin(pins.d, SLOT_UNKNOWN)}});
    shift.width = stages;
    shift.flags = falls ? PART_FALLING : 0;
    const auto output = [&](const Slots &select, Slot q) {
        Part &part = cell.add(Op::ShiftOutput, {select, {q}});
        part.inputs = static_cast<std::uint32_t>(select.size());
        part.width = stages;
    };
    output(address, cell.pin(pins.q, SLOT_UNKNOWN));
    if (last != nullptr && cell.pin(last, SLOT_UNKNOWN) != SLOT_UNKNOWN) {
        output(Slots(address.size(), SLOT_ONE), cell.pin(last, SLOT_UNKNOWN));
    }
}

std::uint16_t addMemory(RecipeBuilder &cell, std::uint32_t width, std::uint32_t addressBits, std::string_view start)
{
    cell.recipe().kind = CellKind::Memory;
    MemoryShape shape;
    shape.width = width;
    shape.addressBits = addressBits;
    shape.start.assign(start.rbegin(), start.rend());
    cell.recipe().memories.push_back(shape);
    return static_cast<std::uint16_t>(cell.recipe().memories.size() - 1);
}

void addWritePort(RecipeBuilder &cell, std::uint16_t memory, Slot clock, bool falls, const Slots &address,
                  const Slots &data, const Slots &enables)
{
    Part &part = cell.add(Op::MemoryWrite, {{clock}, address, data, enables});
    part.memory = memory;
    part.width = static_cast<std::uint32_t>(data.size());
    part.inputs = static_cast<std::uint32_t>(address.size());
    part.flags = falls ? PART_FALLING : 0;
}

Part &addReadPort(RecipeBuilder &cell, Op op, std::uint16_t memory, const Slots &control, const Slots &address,
                  const Slots &data)
{
    Part &part = cell.add(op, {control, address, data});
    part.memory = memory;
    part.width = static_cast<std::uint32_t>(data.size());
    part.inputs = static_cast<std::uint32_t>(address.size());
    return part;
}

void addReadPort(RecipeBuilder &cell, std::uint16_t memory, const Slots &address, const Slots &data)
{
    addReadPort(cell, Op::MemoryRead, memory, {SLOT_ZERO, SLOT_ONE, SLOT_ZERO}, address, data);
}

void addClockedReadPort(RecipeBuilder &cell, std::uint16_t memory, Slot clock, Slot enable, Slot block,
                        const Slots &address, const Slots &data)
{
    addReadPort(cell, Op::ClockedRead, memory, {clock, enable, block}, address, data);
}

bool addConstant(RecipeBuilder &cell, bool value)
{
    cell.recipe().kind = CellKind::Constant;
    for (const std::uint32_t pin : cell.cell().outputs()) {
        cell.join(static_cast<Slot>(pin), value ? SLOT_ONE : SLOT_ZERO);
    }
    return true;
}

} // namespace kvr::netlistdb::analysis::probe
