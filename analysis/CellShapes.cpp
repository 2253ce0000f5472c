#include "analysis/CellShapes.h"

#include "analysis/PinRoles.h"
#include "analysis/WordCells.h"

#include <algorithm>
#include <cctype>

namespace kvr::netlistdb::analysis {

namespace {

/// Every input that no clock has to itself belongs to all of them.
void captureBySides(ModelBuilder &cell, const std::vector<std::uint32_t> &clockPins, const PinList &inputs)
{
    for (const std::uint32_t pin : inputs) {
        std::vector<std::uint32_t> sides;
        for (std::uint32_t clock = 0; clock < clockPins.size(); ++clock) {
            if (isOnSideOf(cell.nameOf(pin), cell.nameOf(clockPins[clock]))) {
                sides.push_back(clock);
            }
        }
        for (std::uint32_t clock = 0; clock < clockPins.size(); ++clock) {
            if (sides.empty() || std::find(sides.begin(), sides.end(), clock) != sides.end()) {
                cell.capture({pin}, clock);
            }
        }
    }
}

/// The address pins of a shift register: they choose the stage that its output shows.
PinList stageSelect(const ModelBuilder &cell)
{
    PinList pins;
    for (const std::uint32_t pin : cell.inputs()) {
        const std::string_view name = cell.nameOf(pin);
        const bool isNumbered = std::all_of(name.begin() + (name.empty() ? 0 : 1), name.end(), [](char c) {
            return std::isdigit(static_cast<unsigned char>(c)) != 0 || c == '[' || c == ']';
        });
        if (!name.empty() && (name.front() == 'A' || name.front() == 'I') && isNumbered) {
            pins.push_back(pin);
        }
    }
    return pins;
}

/// The input that a buffer passes on: the only one, or the one of several that is called I.
std::uint32_t passedInput(const ModelBuilder &cell)
{
    const PinList &named = cell.port("I");
    const PinList inputs = cell.inputs();
    return named.size() == 1 ? named.front() : inputs.size() == 1 ? inputs.front() : NONE;
}

} // namespace

void buildRegister(ModelBuilder &cell, CellKind kind, const std::vector<std::uint32_t> &clockPins)
{
    cell.setKind(kind);
    markControlPins(cell);
    for (const std::uint32_t pin : clockPins) {
        cell.addClock(pin, kind == CellKind::Ddr ? EDGE_RISE | EDGE_FALL : edgesOf(cell, pin));
    }
    captureBySides(cell, clockPins, cell.inputs());
    if (kind == CellKind::ShiftRegister) {
        const PinList select = stageSelect(cell);
        cell.setRole(select, PinRole::Address);
        if (!select.empty()) {
            cell.reach(cell.outputs(), select);
        }
    }
}

void buildPad(ModelBuilder &cell)
{
    wholeLogic(cell);
    cell.setKind(CellKind::Pad);
    PinList outside;
    for (const std::uint32_t pin : cell.inputs()) {
        if (cell.isOutput(pin)) {
            outside.push_back(pin);
        }
    }
    const std::uint32_t input = outside.empty() ? passedInput(cell) : outside.size() == 1 ? outside.front() : NONE;
    for (const std::uint32_t pin : cell.outputs()) {
        if (input != NONE && !cell.isInput(pin)) {
            cell.markPass(pin, input, false);
        }
    }
}

void buildClockBuffer(ModelBuilder &cell, CellKind kind)
{
    wholeLogic(cell);
    cell.setKind(kind);
    const std::uint32_t input = passedInput(cell);
    if (input != NONE) {
        for (const std::uint32_t pin : cell.outputs()) {
            cell.markPass(pin, input, false);
        }
    }
}

void buildLookUpTable(ModelBuilder &cell)
{
    wholeLogic(cell);
    const std::string_view contents = cell.parameter("INIT");
    const PinList inputs = cell.inputs();
    if (inputs.size() != 1 || contents.empty() || contents.find_first_of("xz") != std::string_view::npos ||
        bitOf(contents, 0) == bitOf(contents, 1)) {
        return;
    }
    cell.setKind(CellKind::Buffer);
    for (const std::uint32_t pin : cell.outputs()) {
        cell.markPass(pin, inputs.front(), bitOf(contents, 0));
    }
}

void buildLogic(ModelBuilder &cell)
{
    wholeLogic(cell);
    const PinList inputs = cell.inputs();
    const PinList outputs = cell.outputs();
    if (inputs.size() != 1 || outputs.size() != 1 || inputs == outputs) {
        return;
    }
    const std::string type = upperCase(cell.type());
    const bool inverts = endsWith(type, "INV") || endsWith(type, "NOT");
    if (inverts || endsWith(type, "BUF")) {
        cell.setKind(CellKind::Buffer);
        cell.markPass(outputs.front(), inputs.front(), inverts);
    }
}

void buildClockGenerator(ModelBuilder &cell)
{
    cell.setKind(CellKind::ClockGenerator);
    for (const std::uint32_t pin : cell.inputs()) {
        const std::string_view name = cell.nameOf(pin);
        const bool isClock = name == "I" || name.find("CLK") != std::string_view::npos ||
                             name.find("REF") != std::string_view::npos || name.find("CKI") != std::string_view::npos;
        if (isClock && name.find("FB") == std::string_view::npos && name.find("EN") == std::string_view::npos) {
            cell.setRole(pin, PinRole::Reference);
        }
    }
}

void buildUnclockedMemory(ModelBuilder &cell, const std::vector<std::uint32_t> &writeClocks, const PinList &read)
{
    cell.setKind(CellKind::Memory);
    markControlPins(cell);
    for (const std::uint32_t pin : writeClocks) {
        cell.launch(cell.outputs(), cell.addClock(pin, edgesOf(cell, pin)));
    }
    PinList written;
    for (const std::uint32_t pin : cell.inputs()) {
        if (std::find(read.begin(), read.end(), pin) == read.end()) {
            written.push_back(pin);
        }
    }
    captureBySides(cell, writeClocks, written);
    PinList reaching = read;
    if (writeClocks.empty() || read.empty()) {
        for (const std::uint32_t pin : cell.inputs()) {
            if (cell.roleOf(pin) != PinRole::Clock) {
                reaching.push_back(pin);
            }
        }
    }
    std::sort(reaching.begin(), reaching.end());
    reaching.erase(std::unique(reaching.begin(), reaching.end()), reaching.end());
    cell.reach(cell.outputs(), reaching);
}

} // namespace kvr::netlistdb::analysis
