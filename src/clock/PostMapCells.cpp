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

bool isClockOf(const Verific::Instance *cell, const Verific::Port *drivingPin, const Verific::Port *port)
{
    const std::string_view output = nameOf(drivingPin);
    const std::string_view clock = nameOf(port);
    if (!isClockPort(port) || output.empty() || clock.empty()) {
        return false;
    }
    const std::string_view type = deviceCellName(cell);
    if (startsWith(type, "KVR_RAM")) {
        return output.front() == clock.front();
    }
    if (startsWith(type, "KVR_DPRAM")) {
        return output.back() == clock.back();
    }
    return true;
}

bool beforeBuffer(const Verific::Net *net, const Verific::Net *&clock)
{
    const Verific::Instance *const driver = net->Driver();
    if (isClockBuffer(driver)) {
        return bufferInput(driver, clock);
    }
    clock = net;
    return true;
}

bool clockOfOutput(const Verific::Instance *cell, const Verific::Port *drivingPin, const Verific::Net *&clock)
{
    Verific::MapIter pins;
    Verific::PortRef *pin = nullptr;
    FOREACH_PORTREF_OF_INST (cell, pins, pin) {
        if (pin->GetPort() != nullptr && pin->GetNet() != nullptr && isClockOf(cell, drivingPin, pin->GetPort()) &&
            beforeBuffer(pin->GetNet(), clock)) {
            return true;
        }
    }
    return false;
}

} // namespace kvr::netlistdb
