// The cells of the KVR library, known by their names.

#include "analysis/CellShapes.h"
#include "analysis/DeviceCells.h"
#include "analysis/PinRoles.h"
#include "analysis/WordCells.h"

#include <DataBase.h>

#include <algorithm>
#include <utility>

namespace kvr::netlistdb::analysis {

namespace {

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

} // namespace kvr::netlistdb::analysis
