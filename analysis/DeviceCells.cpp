// Cells of which the reader wrote beside them what they are, and cells with the netlist database's own marks alone.

#include "analysis/DeviceCells.h"

#include "analysis/CellShapes.h"
#include "analysis/PinRoles.h"
#include "analysis/Texts.h"
#include "analysis/WordCells.h"

#include <DataBase.h>

namespace kvr::netlistdb::analysis {

namespace {

/// The clock that a register of the netlist database has, or NONE.
std::uint32_t registerClock(const ModelBuilder &cell)
{
    return cell.view().IsRegister() != 0 ? cell.pinOf(cell.view().GetClock()) : NONE;
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

} // namespace

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
    if (isGenericCell(view)) {
        wholeLogic(cell);
    } else {
        cell.setKind(CellKind::BlackBox);
    }
}

std::vector<std::string> deviceParameters(const Verific::Netlist &view)
{
    std::vector<std::string> names = invertingParameters(view);
    const std::string_view name = typeOf(&view);
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
