#include "analysis/ModelBuilder.h"

#include "analysis/Texts.h"

#include <DataBase.h>

#include <algorithm>
#include <cctype>

namespace kvr::netlistdb::analysis {

namespace {

/// The bits of a bus from the rightmost one on.
template <typename Visit> void forEachBit(const Verific::PortBus &bus, Visit visit)
{
    const long long left = bus.LeftIndex();
    const long long right = bus.RightIndex();
    const long long step = right <= left ? 1 : -1;
    for (long long index = right; index != left + step; index += step) {
        if (const Verific::Port *port = bus.ElementAtIndex(static_cast<int>(index))) {
            visit(port);
        }
    }
}

bool isBits(std::string_view value)
{
    return value.find_first_not_of("01xz") == std::string_view::npos;
}

} // namespace

std::string_view parameterOf(const Verific::Instance &instance, const char *name)
{
    const Verific::Map *const parameters = instance.GetParameters();
    return parameters != nullptr ? textOf(static_cast<const char *>(parameters->GetValue(name))) : std::string_view();
}

ModelBuilder::ModelBuilder(const Verific::Instance &instance, const Verific::Instance &named, bool borrows)
    : m_named(named)
{
    m_model.view = instance.View();
    m_type = typeOf(m_model.view);
    addPorts(*m_model.view, false);
    if (borrows) {
        addPorts(*named.View(), true);
    }
    m_launches.resize(m_model.pins.size());
    m_captures.resize(m_model.pins.size());
}

void ModelBuilder::addPorts(const Verific::Netlist &view, bool areBorrowed)
{
    const auto isKnown = [&](std::string_view name) { return areBorrowed && m_ownNames.count(name) != 0; };
    Verific::MapIter ports;
    const Verific::Port *port = nullptr;
    FOREACH_PORT_OF_NETLIST (&view, ports, port) {
        const std::string_view name = textOf(port->Bus() != nullptr ? port->Bus()->Name() : port->Name());
        if (isKnown(name) || (areBorrowed && port->IsInput() == 0)) {
            continue;
        }
        CellModel::Pin pin;
        pin.port = port;
        pin.isInput = port->IsOutput() == 0;
        pin.isOutput = port->IsOutput() != 0 || port->IsInout() != 0;
        pin.isBorrowed = areBorrowed;
        const auto number = static_cast<std::uint32_t>(m_model.pins.size());
        m_byPort.emplace(port, number);
        m_names.push_back(name);
        if (port->Bus() == nullptr) {
            m_byName[name].push_back(number);
        }
        if (!areBorrowed) {
            m_ownNames.insert(name);
        }
        m_model.pins.push_back(pin);
    }
    Verific::MapIter buses;
    const Verific::PortBus *bus = nullptr;
    FOREACH_PORTBUS_OF_NETLIST (&view, buses, bus) {
        const std::string_view name = textOf(bus->Name());
        if (!isKnown(name)) {
            forEachBit(*bus, [&](const Verific::Port *bit) {
                const std::uint32_t pin = pinOf(bit);
                if (pin != NONE) {
                    m_byName[name].push_back(pin);
                }
            });
        }
    }
}

std::string_view ModelBuilder::parameter(const char *name) const
{
    return parameterOf(m_named, name);
}

const PinList &ModelBuilder::port(std::string_view name) const
{
    static const PinList none;
    const auto found = m_byName.find(name);
    return found != m_byName.end() ? found->second : none;
}

PinList ModelBuilder::inputs() const
{
    PinList pins;
    for (std::uint32_t pin = 0; pin < m_model.pins.size(); ++pin) {
        if (m_model.pins[pin].isInput) {
            pins.push_back(pin);
        }
    }
    return pins;
}

PinList ModelBuilder::outputs() const
{
    PinList pins;
    for (std::uint32_t pin = 0; pin < m_model.pins.size(); ++pin) {
        if (m_model.pins[pin].isOutput) {
            pins.push_back(pin);
        }
    }
    return pins;
}

std::uint32_t ModelBuilder::pinOf(const Verific::Port *port) const
{
    const auto found = m_byPort.find(port);
    return found != m_byPort.end() ? found->second : NONE;
}

void ModelBuilder::setRole(const PinList &pins, PinRole role)
{
    for (const std::uint32_t pin : pins) {
        m_model.pins[pin].role = role;
    }
}

void ModelBuilder::reach(const PinList &to, const PinList &from)
{
    if (to.empty()) {
        return;
    }
    const auto group = static_cast<std::uint32_t>(m_model.groups.size());
    m_model.groups.addList(from);
    m_model.groupOutputs.push_back(static_cast<std::uint32_t>(to.size()));
    for (const std::uint32_t pin : to) {
        m_model.pins[pin].group = group;
    }
}

void ModelBuilder::pass(std::uint32_t to, std::uint32_t from, bool inverts)
{
    reach({to}, {from});
    markPass(to, from, inverts);
}

void ModelBuilder::markPass(std::uint32_t to, std::uint32_t from, bool inverts)
{
    m_model.pins[to].passes = from;
    m_model.pins[to].inverts = inverts;
}

std::uint32_t ModelBuilder::addClock(std::uint32_t pin, std::uint8_t edges)
{
    m_model.pins[pin].role = PinRole::Clock;
    m_model.clocks.push_back({pin, edges});
    return static_cast<std::uint32_t>(m_model.clocks.size()) - 1;
}

void ModelBuilder::launch(const PinList &outputs, std::uint32_t clock)
{
    for (const std::uint32_t pin : outputs) {
        if (m_model.pins[pin].isOutput) {
            m_launches[pin].push_back(clock);
        }
    }
}

void ModelBuilder::capture(const PinList &inputs, std::uint32_t clock)
{
    for (const std::uint32_t pin : inputs) {
        if (m_model.pins[pin].isInput && m_model.pins[pin].role != PinRole::Clock) {
            m_captures[pin].push_back(clock);
        }
    }
}

CellModel ModelBuilder::finish()
{
    for (const PinList &clocks : m_launches) {
        m_model.launches.addList(clocks);
    }
    for (std::uint32_t pin = 0; pin < m_model.pins.size(); ++pin) {
        // A pin may have become a clock after it was given to another one.
        m_model.captures.addList(m_model.pins[pin].role == PinRole::Clock ? PinList() : m_captures[pin]);
    }
    m_model.pins.shrink_to_fit();
    m_model.groups.shrink();
    m_model.launches.shrink();
    m_model.captures.shrink();
    return std::move(m_model);
}

std::string upperCase(std::string_view text)
{
    std::string upper(text);
    for (char &c : upper) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return upper;
}

bool isNonZero(std::string_view value)
{
    return !value.empty() && value.find_first_not_of("0123456789xz") == std::string_view::npos &&
           value.find_first_of("123456789") != std::string_view::npos;
}

std::uint64_t numberOf(std::string_view value)
{
    const bool bits = value.size() >= 32 && isBits(value);
    std::uint64_t number = 0;
    for (const char c : value) {
        if (c < '0' || c > '9') {
            return 0;
        }
        number = number * (bits ? 2 : 10) + static_cast<std::uint64_t>(c - '0');
    }
    return number;
}

bool bitOf(std::string_view value, std::uint64_t position)
{
    if (isBits(value)) {
        return position < value.size() && value[value.size() - 1 - position] == '1';
    }
    return position < 64 && ((numberOf(value) >> position) & 1) != 0;
}

} // namespace kvr::netlistdb::analysis
