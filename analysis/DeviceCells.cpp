#include "analysis/DeviceCells.h"

#include "analysis/PinRoles.h"
#include "analysis/WordCells.h"

#include <DataBase.h>

#include <algorithm>
#include <cctype>

namespace kvr::netlistdb::analysis {

namespace {

/// The clock that a register of the netlist database has, or NONE.
std::uint32_t registerClock(const ModelBuilder &cell)
{
    return cell.view().IsRegister() != 0 ? cell.pinOf(cell.view().GetClock()) : NONE;
}

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

/// A cell with the clocks @p clockPins and all that they capture. What they launch is up to the caller.
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

/// The input that a buffer passes on: the only one, or the one of several that is called I.
std::uint32_t passedInput(const ModelBuilder &cell)
{
    const PinList &named = cell.port("I");
    const PinList inputs = cell.inputs();
    return named.size() == 1 ? named.front() : inputs.size() == 1 ? inputs.front() : NONE;
}

/// What comes out of a pad is its pin outside, when that is one of the cell's pins.
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

/// A look-up table of one input is a buffer or an inverter when its two bits say so.
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

/// A cell of one input is a buffer or an inverter when its name says so.
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

/// A memory without a clock for its outputs: shows at once what its read address chooses, and what is written there.
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

void buildDescribedMemory(ModelBuilder &cell)
{
    std::vector<std::uint32_t> clocks;
    PinList read;
    for (const std::uint32_t pin : cell.inputs()) {
        if (isDescribedAsClock(cell, pin)) {
            clocks.push_back(pin);
        } else if (isDescribedAsRead(cell, pin)) {
            read.push_back(pin);
        }
    }
    buildUnclockedMemory(cell, clocks, read);
}

/// The sequential cells of the KVR library: on which clock pin of those marked an output depends.
bool isClockOf(std::string_view type, std::string_view output, std::string_view clock)
{
    if (startsWith(type, "KVR_RAM")) {
        return !output.empty() && !clock.empty() && output.front() == clock.front();
    }
    if (startsWith(type, "KVR_DPRAM")) {
        return !output.empty() && !clock.empty() && output.back() == clock.back();
    }
    return true;
}

CellKind sequentialKind(std::string_view type)
{
    if (type == "KVR_FF") {
        return CellKind::FlipFlop;
    }
    if (type == "KVR_IDDR" || type == "KVR_ODDR") {
        return CellKind::Ddr;
    }
    if (startsWith(type, "KVR_RAM") || startsWith(type, "KVR_DPRAM")) {
        return CellKind::Memory;
    }
    if (startsWith(type, "KVR_SRL")) {
        return CellKind::ShiftRegister;
    }
    return type == "KVR_MULT" || startsWith(type, "KVR_DSP") ? CellKind::Dsp : CellKind::BlackBox;
}

void buildKvrRegister(ModelBuilder &cell, std::string_view type, CellKind kind)
{
    std::vector<std::uint32_t> clocks;
    for (const std::uint32_t pin : cell.inputs()) {
        if (isMarkedAsClock(cell, pin)) {
            clocks.push_back(pin);
        }
    }
    std::vector<std::pair<std::uint32_t, std::uint32_t>> launches;
    PinList unclocked;
    for (const std::uint32_t output : cell.outputs()) {
        bool found = false;
        for (std::uint32_t clock = 0; clock < clocks.size(); ++clock) {
            if (isClockOf(type, cell.nameOf(output), cell.nameOf(clocks[clock]))) {
                launches.emplace_back(output, clock);
                found = true;
            }
        }
        if (!found) {
            unclocked.push_back(output);
        }
    }
    if (launches.empty() && kind == CellKind::Memory) {
        PinList read;
        for (const std::uint32_t pin : cell.inputs()) {
            if (!unclocked.empty() && isClockOf(type, cell.nameOf(unclocked.front()), cell.nameOf(pin)) &&
                std::find(clocks.begin(), clocks.end(), pin) == clocks.end()) {
                read.push_back(pin);
            }
        }
        buildUnclockedMemory(cell, clocks, read);
        return;
    }
    if (clocks.empty()) {
        cell.setKind(CellKind::BlackBox);
        return;
    }
    buildRegister(cell, kind, clocks);
    if (type == "KVR_FF" && !cell.parameter("R_ASYNC").empty()) {
        cell.setRole(cell.port("R"),
                     isNonZero(cell.parameter("R_ASYNC")) ? PinRole::AsyncSetReset : PinRole::SyncSetReset);
    }
    for (const auto &[output, clock] : launches) {
        cell.launch({output}, clock);
    }
}

} // namespace

std::string_view deviceCellName(const Verific::Instance &instance)
{
    const char *const value = instance.GetAttValue("KVR_ATTRIBUTE_CELL_NAME");
    return value != nullptr ? std::string_view(value) : std::string_view();
}

bool isDeviceCell(std::string_view deviceCell)
{
    return deviceCell == "KVR_GBUFCE" || sequentialKind(deviceCell) != CellKind::BlackBox;
}

bool buildDescribedCell(ModelBuilder &cell)
{
    const char *const text = cell.view().GetAttValue("NETLISTDB_CELL_KIND");
    if (text == nullptr || startsWith(cell.type(), "KVR_")) {
        return false;
    }
    const std::string_view kind = text;
    const std::uint32_t clock = registerClock(cell);
    if (clock != NONE) {
        std::vector<std::uint32_t> clocks{clock};
        for (const std::uint32_t pin : cell.inputs()) {
            if (pin != clock && isMarkedAsClock(cell, pin)) {
                clocks.push_back(pin);
            }
        }
        const CellKind built = kind == "memory"           ? CellKind::Memory
                               : kind == "dsp"            ? CellKind::Dsp
                               : kind == "shift-register" ? CellKind::ShiftRegister
                               : kind == "ddr"            ? CellKind::Ddr
                                                          : CellKind::FlipFlop;
        buildRegister(cell, built, clocks);
        // The reader makes one instance for each clock: all that is connected belongs to the first.
        cell.launch(cell.outputs(), 0);
    } else if (kind == "pll" || kind == "oscillator" || kind == "clock-divider") {
        buildClockGenerator(cell);
    } else if (kind == "hard-block") {
        cell.setKind(CellKind::BlackBox);
    } else if (kind == "memory") {
        buildDescribedMemory(cell);
    } else if (kind == "clock-buffer" || kind == "clock-gate") {
        buildClockBuffer(cell, kind == "clock-gate" ? CellKind::ClockGate : CellKind::Buffer);
    } else if (kind == "io") {
        buildPad(cell);
    } else if (kind == "lut") {
        buildLookUpTable(cell);
    } else if (kind == "logic") {
        buildLogic(cell);
    } else {
        wholeLogic(cell);
        if (kind == "latch") {
            cell.setKind(CellKind::Latch);
            markControlPins(cell);
        } else if (kind == "clock-mux") {
            cell.setKind(CellKind::ClockMux);
        } else if (kind == "constant") {
            cell.setKind(CellKind::Constant);
        }
    }
    return true;
}

bool buildKvrCell(ModelBuilder &cell, std::string_view deviceCell)
{
    const std::string_view type = deviceCell.empty() ? cell.type() : deviceCell;
    if (!startsWith(type, "KVR_")) {
        return false;
    }
    const CellKind sequential = sequentialKind(type);
    if (sequential != CellKind::BlackBox) {
        buildKvrRegister(cell, type, sequential);
    } else if (type == "KVR_GBUFCE") {
        buildClockBuffer(cell, CellKind::ClockGate);
    } else if (type == "KVR_IBUF" || type == "KVR_OBUF" || type == "KVR_IOBUF") {
        buildPad(cell);
    } else if (type == "KVR_VCC" || type == "KVR_GND") {
        cell.setKind(CellKind::Constant);
    } else if (startsWith(type, "KVR_LUT")) {
        buildLookUpTable(cell);
    } else {
        wholeLogic(cell);
    }
    return true;
}

void buildGenericCell(ModelBuilder &cell)
{
    const Verific::Netlist &view = cell.view();
    const std::uint32_t clock = registerClock(cell);
    if (view.IsRegister() != 0) {
        if (clock == NONE) {
            cell.setKind(CellKind::BlackBox);
            return;
        }
        buildRegister(cell, CellKind::FlipFlop, {clock});
        cell.launch(cell.outputs(), 0);
        return;
    }
    switch (view.Type()) {
    case Verific::PRIM_PWR:
    case Verific::PRIM_GND:
    case Verific::PRIM_X:
    case Verific::PRIM_Z:
        cell.setKind(CellKind::Constant);
        return;
    case Verific::PRIM_BUF:
    case Verific::PRIM_INV: {
        wholeLogic(cell);
        std::uint32_t input = cell.pinOf(view.GetInput());
        const PinList inputs = cell.inputs();
        if (input == NONE && inputs.size() == 1) {
            input = inputs.front();
        }
        if (input != NONE) {
            cell.setKind(CellKind::Buffer);
            for (const std::uint32_t pin : cell.outputs()) {
                cell.markPass(pin, input, view.Type() == Verific::PRIM_INV);
            }
        }
        return;
    }
    default:
        break;
    }
    const Verific::Library *const library = view.Owner() != nullptr ? view.Owner()->Owner() : nullptr;
    const std::string_view name = library != nullptr && library->Name() != nullptr ? library->Name() : "";
    if (view.IsOperator() != 0 || view.IsPrimitive() != 0 || name == "Operators" || name == "Primitives") {
        wholeLogic(cell);
    } else {
        cell.setKind(CellKind::BlackBox);
    }
}

std::vector<std::string> deviceParameters(const Verific::Netlist &view)
{
    std::vector<std::string> names = invertingParameters(view);
    const char *const type = view.CellBaseName();
    const std::string_view name = type != nullptr ? type : "";
    const char *const kind = view.GetAttValue("NETLISTDB_CELL_KIND");
    const unsigned ports = view.GetPorts()->Size();
    if (ports == 2 && (startsWith(name, "KVR_LUT") || (kind != nullptr && std::string_view(kind) == "lut"))) {
        names.push_back("INIT");
    }
    if (startsWith(name, "KVR_")) {
        names.insert(names.end(), {"C_INVERTED", "R_ASYNC"});
    }
    return names;
}

} // namespace kvr::netlistdb::analysis
