#include "design/Form.h"

#include <DataBase.h>
#include <cstring>

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

bool isDeviceCell(const Verific::Instance &instance)
{
    const Verific::Netlist *view = instance.View();
    const char *name = view != nullptr ? view->CellBaseName() : nullptr;
    return name != nullptr && std::strncmp(name, "KVR_", 4) == 0;
}

} // namespace

Form detectForm(const Verific::Netlist &netlist)
{
    bool deviceCells = false;
    bool others = false;
    Verific::MapIter mi;
    Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (&netlist, mi, instance) {
        if (instance->GetAtt("KVR_ATTRIBUTE_CELL_NAME") != nullptr) {
            return Form::PostMap;
        }
        if (isDeviceCell(*instance)) {
            deviceCells = true;
        } else if (!isConstant(*instance)) {
            others = true;
        }
    }
    return deviceCells && !others ? Form::PostMap : Form::Elaborated;
}

} // namespace kvr::netlistdb::tool
