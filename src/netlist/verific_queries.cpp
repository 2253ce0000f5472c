#include "netlist/verific_queries.h"

#include <DataBase.h>
#include <Map.h>

#include <cstring>

namespace kvr::netlistdb::verific_queries {

std::uint32_t widthOf(const Verific::Net &net)
{
    return net.Size();
}

std::uint32_t widthOf(const Verific::PortBus &portBus)
{
    return portBus.Size();
}

bool mustNotBeProbed(const Verific::Net &net)
{
    return net.IsRamNet() != 0;
}

const char *cellName(const Verific::Netlist &netlist)
{
    const Verific::Cell *cell = netlist.Owner();
    return cell != nullptr ? cell->Name() : nullptr;
}

const char *libraryName(const Verific::Netlist &netlist)
{
    const Verific::Cell *cell = netlist.Owner();
    const Verific::Library *library = cell != nullptr ? cell->Owner() : nullptr;
    return library != nullptr ? library->Name() : nullptr;
}

std::uint32_t parameterCount(const Verific::Instance &instance)
{
    const Verific::Map *parameters = instance.GetParameters();
    return parameters != nullptr ? parameters->Size() : 0;
}

bool isRegister(const Verific::Netlist &netlist)
{
    return netlist.IsRegister() != 0;
}

const Verific::Port *clockPort(const Verific::Netlist &netlist)
{
    return netlist.GetClock();
}

bool isBuffer(const Verific::Netlist &netlist)
{
    return netlist.Type() == Verific::PRIM_BUF;
}

const Verific::Port *inputPort(const Verific::Netlist &netlist)
{
    return netlist.GetInput();
}

bool mayDescend(const Verific::Netlist &netlist)
{
    return !netlist.IsBlackBox() && !netlist.IsOperator() && !netlist.IsPrimitive();
}

bool isGenericCell(const Verific::Netlist &netlist)
{
    const char *library = libraryName(netlist);
    return library != nullptr && (std::strcmp(library, "Operators") == 0 || std::strcmp(library, "Primitives") == 0);
}

const Verific::Net *innerNet(const Verific::Port &port)
{
    return port.GetNet();
}

} // namespace kvr::netlistdb::verific_queries
