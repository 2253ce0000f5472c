#include "clock/PostMapCells.h"

#include "DataBase.h"

#include <cstring>

namespace kvr::netlistdb {

namespace {

bool startsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

std::string_view nameOf(const Verific::Port *port)
{
    const char *name = port->Name();
    return name != nullptr ? std::string_view(name) : std::string_view();
}

} // namespace

std::string_view deviceCellName(const Verific::Instance *instance)
{
    const char *value = instance != nullptr ? instance->GetAttValue("KVR_ATTRIBUTE_CELL_NAME") : nullptr;
    return value != nullptr ? std::string_view(value) : std::string_view();
}

bool isClockBuffer(const Verific::Instance *instance)
{
    return deviceCellName(instance) == "KVR_GBUFCE";
}

bool bufferInput(const Verific::Instance *buffer, const Verific::Net *&net)
{
    const Verific::Netlist *cell = buffer->View();
    const Verific::Port *input = cell != nullptr ? cell->GetPort("I", 0) : nullptr;
    if (input == nullptr) {
        return false;
    }
    net = buffer->GetNet(input);
    return true;
}

bool isSequentialCell(const Verific::Instance *instance)
{
    const std::string_view cell = deviceCellName(instance);
    return cell == "KVR_FF" || cell == "KVR_MULT" || cell == "KVR_IDDR" || cell == "KVR_ODDR" ||
           startsWith(cell, "KVR_RAM") || startsWith(cell, "KVR_DPRAM") || startsWith(cell, "KVR_DSP") ||
           startsWith(cell, "KVR_SRL");
}

bool isClockPort(const Verific::Port *port)
{
    if (port->IsOutput()) {
        return false;
    }
    const char *value = port->GetAttValue("KVR_ATTRIBUTE_PORT__IS_CLOCK");
    return value != nullptr && std::strcmp(value, "TRUE") == 0;
}

bool clocksOutput(std::string_view cell, std::string_view drivingPin, std::string_view clockPin)
{
    if (drivingPin.empty() || clockPin.empty()) {
        return false;
    }
    if (startsWith(cell, "KVR_RAM")) {
        return drivingPin.front() == clockPin.front();
    }
    if (startsWith(cell, "KVR_DPRAM")) {
        return drivingPin.back() == clockPin.back();
    }
    return true;
}

bool clockOfOutput(const Verific::Instance *cell, const Verific::Port *drivingPin, const Verific::Net *&clock)
{
    const std::string_view type = deviceCellName(cell);
    const std::string_view output = nameOf(drivingPin);
    Verific::MapIter pins;
    Verific::PortRef *pin = nullptr;
    FOREACH_PORTREF_OF_INST (cell, pins, pin) {
        const Verific::Port *port = pin->GetPort();
        const Verific::Net *net = pin->GetNet();
        if (port == nullptr || net == nullptr || !isClockPort(port) || !clocksOutput(type, output, nameOf(port))) {
            continue;
        }
        const Verific::Instance *driver = net->Driver();
        if (isClockBuffer(driver) && !bufferInput(driver, net)) {
            continue;
        }
        clock = net;
        return true;
    }
    return false;
}

} // namespace kvr::netlistdb
