#include "analysis/probe/RecipeTable.h"

#include "analysis/DeviceCells.h"
#include "analysis/probe/Hash.h"
#include "analysis/probe/RecipeBuilder.h"

#include <DataBase.h>

#include <algorithm>

namespace kvr::netlistdb::analysis::probe {

namespace {

std::uint64_t keyOf(const Verific::Instance &instance)
{
    std::uint64_t key = mixed(reinterpret_cast<std::uintptr_t>(instance.View()));
    Verific::MapIter parameters;
    const char *name = nullptr;
    const char *value = nullptr;
    FOREACH_PARAMETER_OF_INST (&instance, parameters, name, value) {
        key = mixed(key + hashOf(value != nullptr ? value : "", hashOf(name != nullptr ? name : "")));
    }
    return key;
}

bool addGeneric(RecipeBuilder &cell)
{
    const Verific::Netlist &view = cell.cell().view();
    const PinList outputs = cell.cell().outputs();
    const PinList inputs = cell.cell().inputs();
    switch (view.Type()) {
    case Verific::PRIM_PWR:
    case Verific::PRIM_GND:
    case Verific::PRIM_X:
    case Verific::PRIM_Z:
        cell.recipe().kind = CellKind::Constant;
        for (const std::uint32_t pin : outputs) {
            cell.join(static_cast<Slot>(pin), view.Type() == Verific::PRIM_PWR   ? SLOT_ONE
                                              : view.Type() == Verific::PRIM_GND ? SLOT_ZERO
                                                                                 : SLOT_UNKNOWN);
        }
        return true;
    case Verific::PRIM_BUF:
    case Verific::PRIM_INV:
        if (inputs.size() != 1 || outputs.size() != 1) {
            return false;
        }
        if (view.Type() == Verific::PRIM_BUF) {
            cell.join(static_cast<Slot>(outputs.front()), static_cast<Slot>(inputs.front()));
        } else {
            cell.lut({static_cast<Slot>(inputs.front())}, 1, static_cast<Slot>(outputs.front()));
        }
        return true;
    default:
        return false;
    }
}

Recipe build(const Verific::Instance &instance, CellKind kind)
{
    Recipe recipe;
    recipe.kind = kind;
    const ModelBuilder pins(instance, instance, false);
    const auto attempt = [&](bool (*add)(RecipeBuilder &)) {
        Recipe candidate;
        candidate.kind = kind;
        RecipeBuilder cell(pins, candidate);
        if (add(cell) && std::all_of(candidate.parts.begin(), candidate.parts.end(),
                                     [](const Part &part) { return part.isWellFormed(); })) {
            candidate.isKnown = true;
            recipe = std::move(candidate);
        }
        return recipe.isKnown;
    };
    const std::string_view type = pins.type();
    if (!attempt(addGeneric)) {
        if (!type.empty() && type.front() == '$') {
            (void)(attempt(addWordOperator) || attempt(addWordRegister) || attempt(addWordMemory) || attempt(addGate));
        } else {
            (void)(attempt(addKvrCell) || attempt(addDeviceCell));
        }
    }
    recipe.outputs = pins.outputs();
    return recipe;
}

} // namespace

std::uint32_t RecipeTable::recipeOf(const Verific::Instance &instance, CellKind kind)
{
    const auto [found, isNew] = m_known.try_emplace(keyOf(instance), static_cast<std::uint32_t>(m_recipes.size()));
    if (isNew) {
        m_recipes.push_back(build(instance, kind));
    }
    return found->second;
}

} // namespace kvr::netlistdb::analysis::probe
