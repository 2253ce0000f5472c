#include "DeviceCells.h"

#include "PinRoles.h"
#include "YosysReader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

namespace kvr::netlistdb::yosys {

namespace {

std::string textOf(const std::string &file)
{
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (!stream.is_open() || stream.bad()) {
        throw ReadError(file + ": cannot read the file: " + std::strerror(errno != 0 ? errno : EIO));
    }
    return text;
}

/// The name of a pin without the position that a table may give.
std::string_view portOf(std::string_view pin)
{
    return pin.substr(0, pin.find('['));
}

/// Cells may leave pins open that they have: one clock pin that is there will do.
bool fits(const CellDescription &cell, const std::vector<std::string_view> &ports)
{
    const auto has = [&](std::string_view port) { return std::find(ports.begin(), ports.end(), port) != ports.end(); };
    if (!cell.input.empty()) {
        return has(cell.input);
    }
    return cell.clocks.empty() || std::any_of(cell.clocks.begin(), cell.clocks.end(),
                                              [&](const CellClock &clock) { return has(portOf(clock.pin)); });
}

} // namespace

DeviceCells::DeviceCells(const std::vector<std::string> &tables)
{
    for (const std::string &file : tables) {
        m_own.add(textOf(file), file);
    }
}

bool DeviceCells::knows(std::string_view name) const
{
    return m_own.find(name) != nullptr || builtInCells().find(name) != nullptr;
}

DeviceMatch DeviceCells::find(std::string_view name, const std::vector<std::string_view> &ports) const
{
    DeviceMatch match;
    for (const CellTable *table : {&m_own, &builtInCells()}) {
        const std::vector<const CellDescription *> *known = table->find(name);
        if (known == nullptr) {
            continue;
        }
        for (const CellDescription *cell : *known) {
            if (fits(*cell, ports)) {
                match.cell = match.cell != nullptr ? match.cell : cell;
                match.families += (match.families.empty() ? "" : " ") + cell->family;
            }
        }
    }
    return match;
}

Home DeviceCells::homeOf(const CellDescription &cell)
{
    switch (cell.kind) {
    case CellKind::Pll:
    case CellKind::Oscillator:
    case CellKind::ClockDivider:
    case CellKind::HardBlock:
        return Home::Work;
    default:
        return cell.selfDescribing ? Home::Work : Home::Primitives;
    }
}

void DeviceCells::adopt(CellType &type, const DeviceMatch &match)
{
    const CellDescription &cell = *match.cell;
    type.device = &cell;
    type.home = homeOf(cell);
    if (type.home == Home::Primitives) {
        makePrimitive(*type.netlist(), Verific::PRIM_OTHER, nullptr);
    }
    addAttribute(*type.netlist(), "NETLISTDB_CELL_FAMILY", match.families.c_str());
    addAttribute(*type.netlist(), "NETLISTDB_CELL_KIND", nameOf(cell.kind));
    m_adopted.push_back(&type);
    if (cell.selfDescribing) {
        return;
    }
    // Everything else is the same for all cells of the type.
    type.isPlanned = !cell.clocks.empty() || !cell.input.empty() || type.home == Home::Work;
}

void DeviceCells::finish()
{
    for (CellType *type : m_adopted) {
        describePins(*type);
        if (!type->device->selfDescribing) {
            continue;
        }
        for (const CellClock &clock : type->device->clocks) {
            const CellType::Group *group = type->findByName(clock.pin);
            if (group == nullptr || !group->widthKnown || group->range.width == 0) {
                continue;
            }
            Verific::Port &port = *type->pins()[group->firstPin];
            if (port.GetAtt("KVR_ATTRIBUTE_PORT__IS_CLOCK") == nullptr) {
                addAttribute(port, "KVR_ATTRIBUTE_PORT__IS_CLOCK", "TRUE");
            }
        }
    }
}

} // namespace kvr::netlistdb::yosys
