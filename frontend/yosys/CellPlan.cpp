#include "CellPlan.h"

#include "CellTable.h"

#include <algorithm>

namespace kvr::netlistdb::yosys {

namespace {

void addPins(const CellType::Group &group, std::vector<unsigned> &pins)
{
    for (unsigned position = 0; position < group.range.width; ++position) {
        pins.push_back(group.firstPin + position);
    }
}

bool isMade(const CellType::Group *group)
{
    return group != nullptr && group->widthKnown && group->range.width > 0;
}

} // namespace

unsigned pinCalled(CellType &type, std::string_view name)
{
    unsigned position = 0;
    const CellType::Group *group = type.findByName(name);
    if (group == nullptr && !name.empty() && name.back() == ']') {
        const std::size_t bracket = name.rfind('[');
        for (const char c : name.substr(bracket + 1, name.size() - bracket - 2)) {
            position = position * 10 + static_cast<unsigned>(c - '0') % 10;
        }
        group = type.findByName(name.substr(0, bracket));
    }
    return isMade(group) && position < group->range.width ? group->firstPin + position : CellPlan::NO_CLOCK;
}

namespace {

void findPinsOfDevice(CellType &type, ClockPins &found)
{
    for (const CellClock &clock : type.device->clocks) {
        ClockPin pin;
        pin.pin = pinCalled(type, clock.pin);
        if (pin.pin == CellPlan::NO_CLOCK) {
            continue;
        }
        pin.conditions = &clock;
        for (const CellType::Group &group : type.groups()) {
            if (isMade(&group) && group.direction == Verific::DIR_OUT && clock.outputs.match(group.name)) {
                addPins(group, pin.outputs);
            }
        }
        found.clocks.push_back(std::move(pin));
    }
    const PinPatterns &read = type.device->read;
    for (std::size_t place = 0; place < read.size(); ++place) {
        for (const CellType::Group &group : type.groups()) {
            if (isMade(&group) && read.place(group.name) == place) {
                addPins(group, found.reads);
            }
        }
    }
}

bool isClocked(const std::string &enables, unsigned port)
{
    return port < enables.size() && enables[enables.size() - 1 - port] == '1';
}

void findPinsOfMemory(CellType &type, ClockPins &found)
{
    const MemoryPorts &ports = *type.memory;
    const CellType::Group *readClock = type.findByName("RD_CLK");
    const CellType::Group *data = type.findByName("RD_DATA");
    const CellType::Group *address = type.findByName("RD_ADDR");
    const unsigned width = isMade(data) && ports.reads > 0 ? data->range.width / ports.reads : 0;
    const unsigned addressWidth = isMade(address) && ports.reads > 0 ? address->range.width / ports.reads : 0;
    for (unsigned port = 0; port < ports.reads; ++port) {
        if (!isClocked(ports.clockedReads, port)) {
            for (unsigned bit = 0; bit < addressWidth; ++bit) {
                found.reads.push_back(address->firstPin + port * addressWidth + bit);
            }
        } else if (isMade(readClock) && port < readClock->range.width) {
            ClockPin pin;
            pin.pin = readClock->firstPin + port;
            for (unsigned bit = 0; bit < width; ++bit) {
                pin.outputs.push_back(data->firstPin + port * width + bit);
            }
            found.clocks.push_back(std::move(pin));
        }
    }
    const CellType::Group *writeClock = type.findByName("WR_CLK");
    for (unsigned port = 0; isMade(writeClock) && port < ports.writes && port < writeClock->range.width; ++port) {
        if (isClocked(ports.clockedWrites, port)) {
            ClockPin pin;
            pin.pin = writeClock->firstPin + port;
            found.clocks.push_back(std::move(pin));
        }
    }
}

/// Pins come with the widths of the ports, which are learnt from connections: the look is repeated until all are there.
void findClockPins(CellType &type)
{
    if (type.clockPins.pinsSeen == type.pins().size()) {
        return;
    }
    type.clockPins = {};
    type.clockPins.pinsSeen = type.pins().size();
    if (type.memory) {
        findPinsOfMemory(type, type.clockPins);
    } else {
        findPinsOfDevice(type, type.clockPins);
    }
}

bool isOpaque(CellKind kind)
{
    return kind == CellKind::Pll || kind == CellKind::Oscillator || kind == CellKind::ClockDivider ||
           kind == CellKind::HardBlock;
}

bool holds(const CellCondition &condition, const CellDescription &cell, const ParameterLookup &parameter)
{
    return std::all_of(condition.begin(), condition.end(), [&](const auto &each) {
        std::string_view value = parameter(each.first);
        const auto usual = cell.defaults.find(each.first);
        if (value.data() == nullptr && usual != cell.defaults.end()) {
            value = usual->second;
        }
        return std::any_of(each.second.begin(), each.second.end(),
                           [&](const std::string &wanted) { return sameValue(value, wanted); });
    });
}

bool isInUse(const CellClock &clock, const CellDescription &cell, const ParameterLookup &parameter)
{
    const auto hold = [&](const CellCondition &condition) { return holds(condition, cell, parameter); };
    return (clock.when.empty() || std::any_of(clock.when.begin(), clock.when.end(), hold)) &&
           std::none_of(clock.unless.begin(), clock.unless.end(), hold);
}

} // namespace

void CellPlanner::collectClocks(const CellType &type, const std::vector<Verific::Net *> &nets,
                                const ParameterLookup &parameter)
{
    m_inUse.clear();
    const bool isPad = type.device != nullptr && type.device->kind == CellKind::Io;
    for (const ClockPin &clock : type.clockPins.clocks) {
        const Verific::Net *net = nets[clock.pin];
        if (net == nullptr || m_isConstant(net) ||
            (clock.conditions != nullptr && !isInUse(*clock.conditions, *type.device, parameter))) {
            continue;
        }
        // A pad has registers that are not in use, and their clocks may be connected all the same.
        const bool isConnected = std::any_of(clock.outputs.begin(), clock.outputs.end(),
                                             [&](unsigned output) { return nets[output] != nullptr; });
        if (!isPad || isConnected || (clock.conditions != nullptr && clock.conditions->outputs.empty())) {
            m_inUse.push_back(&clock);
        }
    }
}

const CellPlan &CellPlanner::plan(CellType &type, const std::vector<Verific::Net *> &nets,
                                  const ParameterLookup &parameter)
{
    findClockPins(type);
    m_plan.parts.clear();
    m_plan.clocks.clear();
    m_plan.otherClocks.clear();
    const bool isBuffer = type.device != nullptr &&
                          (type.device->kind == CellKind::ClockBuffer || type.device->kind == CellKind::ClockGate);
    m_plan.isBuffer = isBuffer;
    m_clocked.assign(type.pins().size(), 0);
    collectClocks(type, nets, parameter);

    const auto partOf = [&](const Verific::Net *net) {
        return std::find_if(m_plan.parts.begin(), m_plan.parts.end(),
                            [&](const CellPlan::Part &part) { return nets[part.clock] == net; });
    };
    for (const ClockPin *clock : m_inUse) {
        for (const unsigned output : clock->outputs) {
            if (nets[output] == nullptr || m_clocked[output] != 0) {
                continue;
            }
            m_clocked[output] = 1;
            auto part = partOf(nets[clock->pin]);
            if (part == m_plan.parts.end()) {
                m_plan.addPart().clock = clock->pin;
                part = m_plan.parts.end() - 1;
            }
            part->outputs.push_back(output);
        }
    }
    std::vector<unsigned> others;
    for (unsigned pin = 0; pin < type.pins().size(); ++pin) {
        if (nets[pin] != nullptr && m_clocked[pin] == 0 && type.pins()[pin]->IsOutput() != 0) {
            others.push_back(pin);
        }
    }
    const bool opaque = type.device != nullptr && isOpaque(type.device->kind);
    if (!others.empty() || (m_plan.parts.empty() && m_inUse.empty())) {
        CellPlan::Part &part = m_plan.addPart();
        part.opaque = opaque;
        part.outputs = std::move(others);
    } else if (m_plan.parts.empty()) {
        m_plan.addPart().clock = m_inUse.front()->pin;
    }

    const bool isClocked = m_plan.parts.front().clock != CellPlan::NO_CLOCK;
    if (isClocked) {
        m_plan.clocks.push_back(m_plan.parts.front().clock);
    }
    for (const ClockPin *clock : m_inUse) {
        const bool isNew = std::find(m_plan.clocks.begin(), m_plan.clocks.end(), clock->pin) == m_plan.clocks.end();
        if (isClocked && isNew) {
            m_plan.clocks.push_back(clock->pin);
        }
        const auto decided = [&](const CellPlan::Part &part) {
            return part.clock != CellPlan::NO_CLOCK && nets[part.clock] == nets[clock->pin];
        };
        const auto same = [&](unsigned other) { return nets[other] == nets[clock->pin]; };
        if (std::none_of(m_plan.parts.begin(), m_plan.parts.end(), decided) &&
            std::none_of(m_plan.otherClocks.begin(), m_plan.otherClocks.end(), same)) {
            m_plan.otherClocks.push_back(clock->pin);
        }
    }
    return m_plan;
}

} // namespace kvr::netlistdb::yosys
