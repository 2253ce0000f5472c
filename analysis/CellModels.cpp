#include "analysis/CellModels.h"

#include "analysis/DeviceCells.h"
#include "analysis/Texts.h"
#include "analysis/WordCells.h"

#include <DataBase.h>

#include <algorithm>
#include <cstring>

namespace kvr::netlistdb::analysis {

namespace {

std::vector<std::string> parametersOf(const Verific::Netlist &view)
{
    const std::string_view type = typeOf(&view);
    return !type.empty() && type.front() == '$' ? wordParameters() : deviceParameters(view);
}

/// The value on the pins B, when all of them are on constants.
ConstantShift constantShift(const Verific::Instance &instance)
{
    const Verific::Netlist &view = *instance.View();
    const Verific::PortBus *const bus = view.GetPortBus("B");
    const Verific::Port *const only = bus == nullptr ? view.GetPort("B") : nullptr;
    const unsigned width = bus != nullptr ? bus->Size() : only != nullptr ? 1 : 0;
    const int low = bus != nullptr ? bus->RightIndex() : 0;
    const int step = bus != nullptr && bus->IsUp() != 0 ? -1 : 1;
    std::int64_t value = 0;
    bool highest = false;
    for (unsigned at = 0; at < width; ++at) {
        const Verific::Port *const port =
            bus != nullptr ? bus->ElementAtIndex(low + step * static_cast<int>(at)) : only;
        const Verific::Net *const net = port != nullptr ? instance.GetNet(port) : nullptr;
        if (net == nullptr || net->IsMultipleDriven() != 0 || (net->IsPwr() == 0 && net->IsGnd() == 0)) {
            return std::nullopt;
        }
        highest = net->IsPwr() != 0;
        if (highest && at >= 40) {
            value = std::int64_t{1} << 40; // beyond any operand
        } else if (highest) {
            value |= std::int64_t{1} << at;
        }
    }
    const std::string_view type = typeOf(&view);
    const bool isSigned =
        (type == "$shift" || type == "$shiftx") && isNonZero(parameterOf(instance, "B_SIGNED")) && highest;
    if (isSigned) {
        value -= width <= 40 ? std::int64_t{1} << width : value + (std::int64_t{1} << 40);
    }
    return width > 0 ? ConstantShift(value) : std::nullopt;
}

bool isMemory(const Verific::Netlist &view)
{
    const char *const kind = view.GetAttValue("NETLISTDB_CELL_KIND");
    return startsWith(typeOf(&view), "$mem") || (kind != nullptr && std::string_view(kind) == "memory");
}

CellModel build(const Verific::Instance &instance, const Verific::Instance *first, const ConstantShift &shift)
{
    // What a memory shows without a clock comes from its write ports, which are on its first part.
    const bool borrows = first != nullptr && isMemory(*instance.View()) && instance.View()->IsRegister() == 0;
    ModelBuilder cell(instance, first != nullptr ? *first : instance, borrows);
    const std::string_view deviceCell = deviceCellName(instance);
    const bool isWord = !cell.type().empty() && cell.type().front() == '$';
    if (isWord && instance.View()->Type() != Verific::PRIM_PWR && instance.View()->Type() != Verific::PRIM_GND &&
        instance.View()->Type() != Verific::PRIM_X && instance.View()->Type() != Verific::PRIM_Z &&
        (instance.IsOperator() != 0 || instance.IsPrimitive() != 0)) {
        if (!buildWordRegister(cell)) {
            buildWordOperator(cell, shift);
        }
    } else if (!buildDescribedCell(cell) && !buildKvrCell(cell, deviceCell)) {
        buildGenericCell(cell);
    }
    return cell.finish();
}

} // namespace

const Verific::Instance *CellModels::firstPartOf(const Verific::Instance &instance)
{
    const char *const name = instance.Name();
    const Verific::Netlist *const own = instance.View();
    if (name == nullptr || instance.GetParameters() != nullptr || instance.Owner() == nullptr || own == nullptr ||
        own->Owner() == nullptr) {
        return nullptr;
    }
    // Each part has a view of its own. Without this question, names with a colon would make the netlist index all of
    // its instances.
    if (own->Owner()->NumOfNetlists() < 2) {
        return nullptr;
    }
    const char *const colon = std::strrchr(name, ':');
    if (colon == nullptr) {
        return nullptr;
    }
    const Verific::Instance *const first = instance.Owner()->GetInst(std::string(name, colon).c_str());
    const Verific::Netlist *const view = first != nullptr ? first->View() : nullptr;
    return view != nullptr && view != own && view->Owner() == own->Owner() ? first : nullptr;
}

bool CellModels::isLeaf(const Verific::Netlist *view)
{
    return view == nullptr || view->IsBlackBox() != 0 || view->IsRegister() != 0 || isGenericCell(*view) ||
           (view->GetInsts()->Size() == 0 && view->GetNets()->Size() == 0);
}

std::uint32_t CellModels::modelOf(const Verific::Instance &instance)
{
    const Verific::Netlist *const view = instance.View();
    const auto [found, isNew] = m_views.try_emplace(view);
    View &known = found->second;
    if (isNew && view != nullptr) {
        known.parameters = parametersOf(*view);
        known.shifts = isShift(typeOf(view));
        known.mayBorrow = isMemory(*view);
    }
    const std::string_view cellName = deviceCellName(instance);
    const bool isPlain = known.parameters.empty() && !known.shifts && !known.mayBorrow;
    if (isPlain && known.latest != NONE && known.latestCellName == cellName) {
        return known.latest;
    }
    m_key.assign(cellName);
    ConstantShift shift;
    const Verific::Instance *const first = isPlain ? nullptr : firstPartOf(instance);
    for (const std::string &parameter : known.parameters) {
        m_key.append(1, '\0').append(parameterOf(first != nullptr ? *first : instance, parameter.c_str()));
    }
    if (first != nullptr) {
        m_key.append(1, '\0').append(std::to_string(reinterpret_cast<std::uintptr_t>(first->View())));
    }
    if (known.shifts) {
        shift = constantShift(instance);
        m_key.append(1, '\0').append(shift ? std::to_string(*shift) : "");
    }
    if (known.latest != NONE && m_key == known.latestKey) {
        return known.latest;
    }
    auto variant = known.variants.find(m_key);
    if (variant == known.variants.end()) {
        m_models.push_back(view != nullptr ? build(instance, first, shift) : CellModel());
        variant = known.variants.emplace(m_key, static_cast<std::uint32_t>(m_models.size()) - 1).first;
    }
    known.latest = variant->second;
    known.latestCellName = cellName;
    known.latestKey = m_key;
    return variant->second;
}

void CellModels::finish()
{
    m_views.clear();
    m_key.clear();
    m_key.shrink_to_fit();
}

std::size_t CellModels::memory() const
{
    std::size_t bytes = 0;
    for (const CellModel &model : m_models) {
        bytes += model.memory();
    }
    return bytes;
}

} // namespace kvr::netlistdb::analysis
