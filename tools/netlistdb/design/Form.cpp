#include "design/Form.h"

#include <DataBase.h>
#include <cstring>
#include <fmt/format.h>

namespace kvr::netlistdb::tool {

namespace {

bool isConstant(const Verific::Instance &instance)
{
    switch (instance.Type()) {
    case Verific::PRIM_PWR:
    case Verific::PRIM_GND:
    case Verific::PRIM_X:
    case Verific::PRIM_Z:
        return true;
    default:
        return false;
    }
}

bool isIn(const Verific::Netlist &netlist, const char *library)
{
    const Verific::Cell *cell = netlist.Owner();
    const char *name = cell != nullptr && cell->Owner() != nullptr ? cell->Owner()->Name() : nullptr;
    return name != nullptr && std::strcmp(name, library) == 0;
}

/// What an instance says about the form of its netlist.
enum class Hint { Nothing, Mapped, LooksMapped, LooksElaborated, Elaborated };

Hint hintOf(const Verific::Instance &instance)
{
    const Verific::Netlist *view = instance.View();
    const char *name = view != nullptr ? view->CellBaseName() : nullptr;
    if (name == nullptr) {
        return Hint::LooksElaborated;
    }
    const bool isInternal = name[0] == '$';
    if (instance.GetAtt("KVR_ATTRIBUTE_CELL_NAME") != nullptr) {
        return isIn(*view, "Primitives") ? Hint::LooksMapped : Hint::Mapped;
    }
    if (isConstant(instance)) {
        return Hint::Nothing;
    }
    if (isInternal && view->IsRegister() != 0) {
        return Hint::Elaborated;
    }
    if (std::strncmp(name, "KVR_", 4) == 0 || (!isInternal && isIn(*view, "Primitives"))) {
        return Hint::LooksMapped;
    }
    if (view->IsBlackBox() == 0 && view->GetInsts()->Size() > 0) {
        return Hint::Elaborated;
    }
    return Hint::LooksElaborated;
}

} // namespace

Form detectForm(const Verific::Netlist &netlist)
{
    bool hasNamedCells = false;
    bool looksMapped = false;
    bool looksElaborated = false;
    Verific::MapIter mi;
    Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (&netlist, mi, instance) {
        switch (hintOf(*instance)) {
        case Hint::Mapped:
            return Form::PostMap;
        case Hint::Elaborated:
            return Form::Elaborated;
        case Hint::LooksMapped:
            looksMapped = true;
            hasNamedCells |= instance->GetAtt("KVR_ATTRIBUTE_CELL_NAME") != nullptr;
            break;
        case Hint::LooksElaborated:
            looksElaborated = true;
            break;
        case Hint::Nothing:
            break;
        }
    }
    return hasNamedCells || (looksMapped && !looksElaborated) ? Form::PostMap : Form::Elaborated;
}

std::string noteOnHierarchy(const Verific::Netlist &netlist, Form form)
{
    if (form != Form::PostMap) {
        return {};
    }
    std::size_t closed = 0;
    const char *first = nullptr;
    Verific::MapIter mi;
    Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (&netlist, mi, instance) {
        const Verific::Netlist *view = instance->View();
        if (view != nullptr && view->IsBlackBox() == 0 && view->GetInsts()->Size() > 0) {
            ++closed;
            first = first == nullptr ? instance->Name() : first;
        }
    }
    if (closed == 0) {
        return {};
    }
    return fmt::format("a post-map netlist is looked at on its top level only: what is inside {} instance{} with "
                       "contents is left out ({} first); flatten the netlist to see it",
                       closed, closed == 1 ? "" : "s", first != nullptr ? first : "");
}

} // namespace kvr::netlistdb::tool
