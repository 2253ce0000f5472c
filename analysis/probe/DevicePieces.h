#pragma once

#include "analysis/probe/RecipeBuilder.h"

/// What cells of devices have in common, whoever makes them.
namespace kvr::netlistdb::analysis::probe {

/// Pins and settings of a flip-flop; null: has no such pin.
struct DeviceFlipFlop {
    const char *clock;
    const char *d;
    const char *q;
    const char *enable;
    const char *sync;
    const char *async;
    bool falls = false;
    bool resetInverted = false;
    bool dataInverted = false;
    bool enableFirst = false; ///< the synchronous reset needs the enable
    char resetValue = '0';
    char start = '0';
};
void addDeviceFlipFlop(RecipeBuilder &cell, const DeviceFlipFlop &pins);

/// A table of one output, whose inputs are called @p inputs with the numbers 0, 1, and so on, or by one letter each
/// from @p inputs when that has several.
bool addLookUpTable(RecipeBuilder &cell, std::string_view inputs, const char *output, const char *contents);

struct ShiftRegisterPins {
    const char *clock;
    const char *enable;
    const char *d;
    const char *q;
};
/// A shift register with a stage for each value of @p address, and all of @p last, a pin at its end, when it has one.
void addShiftRegister(RecipeBuilder &cell, const Slots &address, const ShiftRegisterPins &pins, bool falls,
                      const char *last = nullptr);

/// A memory of the cell's own. Returns its number. @p start holds the contents as a parameter, address 0 in the lowest
/// bits.
std::uint16_t addMemory(RecipeBuilder &cell, std::uint32_t width, std::uint32_t addressBits, std::string_view start);
void addWritePort(RecipeBuilder &cell, std::uint16_t memory, Slot clock, bool falls, const Slots &address,
                  const Slots &data, const Slots &enables);
/// A read port without or with a clock, as @p op says; @p control are its clock, enable and block.
Part &addReadPort(RecipeBuilder &cell, Op op, std::uint16_t memory, const Slots &control, const Slots &address,
                  const Slots &data);
void addReadPort(RecipeBuilder &cell, std::uint16_t memory, const Slots &address, const Slots &data);
/// Reads while @p enable is 1 and @p block is 0.
void addClockedReadPort(RecipeBuilder &cell, std::uint16_t memory, Slot clock, Slot enable, Slot block,
                        const Slots &address, const Slots &data);

/// All outputs of the cell are that constant.
bool addConstant(RecipeBuilder &cell, bool value);

} // namespace kvr::netlistdb::analysis::probe
