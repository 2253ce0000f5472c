#include "OtherCellTypes.h"

#include "BitReader.h"

#include <algorithm>

namespace kvr::netlistdb::yosys {

namespace {

struct ConstantCell {
    const char *name;
    unsigned primitive;
};
/// In the order of CONSTANT_NAMES.
constexpr std::array<ConstantCell, CONSTANTS> CONSTANT_CELLS = {
    {{"$gnd", Verific::PRIM_GND}, {"$pwr", Verific::PRIM_PWR}, {"$x", Verific::PRIM_X}, {"$z", Verific::PRIM_Z}}};

constexpr VectorRange ONE_BIT{0, 1, false};

} // namespace

CellType &OtherCellTypes::find(std::string_view raw, std::optional<json::object> &parameters,
                               std::optional<json::object> &directions, std::optional<json::object> &connections)
{
    // Modules derived from others with parameters begin with '$' too, but yosys does not know what they are.
    constexpr std::string_view derived = "$paramod";
    return isInternalCell(raw) && raw.substr(0, derived.size()) != derived
               ? internal(raw, parameters, directions, connections)
               : blackBox(raw, directions);
}

CellType &OtherCellTypes::internal(std::string_view raw, std::optional<json::object> &parameters,
                                   std::optional<json::object> &directions, std::optional<json::object> &connections)
{
    auto known = m_families.find(raw);
    if (known == m_families.end()) {
        known = m_families.emplace(m_text.keep(raw), Family{m_text.keep(m_text.text(raw)), {}, {}}).first;
    }
    Family &family = known->second;
    std::string_view text;
    if (parameters) {
        check(parameters->reset().error());
        check(parameters->raw_json().get(text));
    }
    const auto sameText = family.byText.find(text);
    if (sameText != family.byText.end()) {
        return *sameText->second;
    }
    std::vector<std::pair<std::string_view, std::string>> sorted;
    if (parameters) {
        check(parameters->reset().error());
        m_attributes.eachParameter(*parameters, [&](std::string_view key, std::string_view value) {
            sorted.emplace_back(key, std::string(value));
        });
    }
    std::sort(sorted.begin(), sorted.end());
    std::string key;
    for (const auto &[name, value] : sorted) {
        key.append(name).append(1, '\0').append(value).append(1, '\0');
    }
    CellType *&sameParameters = family.byParameters[std::move(key)];
    if (sameParameters == nullptr) {
        sameParameters = &makeInternal(family, sorted, directions, connections);
    }
    family.byText.emplace(m_text.keep(text), sameParameters);
    return *sameParameters;
}

CellType &OtherCellTypes::makeInternal(Family &family,
                                       const std::vector<std::pair<std::string_view, std::string>> &parameters,
                                       std::optional<json::object> &directions,
                                       std::optional<json::object> &connections)
{
    const CellMeaning meaning = meaningOf(family.name, [&](std::string_view name) -> std::string_view {
        for (const auto &[key, value] : parameters) {
            if (key == name) {
                return value;
            }
        }
        return {};
    });
    CellType &type = m_types.emplace_back(family.name, m_design.add(meaning.home, family.name));
    type.home = meaning.home;
    if (meaning.memory) {
        type.memory = meaning.memory;
        type.isPlanned = true;
    } else {
        m_internals.push_back({&type, meaning});
    }
    if (directions) {
        addDirections(type, *directions);
    } else if (connections) {
        check(connections->reset().error());
        eachField(*connections, [&](std::string_view raw, json::value &) {
            const std::string_view name = m_text.keep(m_text.text(raw));
            m_fault.enterPort(name);
            const unsigned direction = directionOf(family.name, name);
            if (direction == Verific::DIR_NONE) {
                m_fault.fail("cell of unknown type '" + std::string(family.name) + "' without \"port_directions\"");
            }
            type.declare(m_text.keep(raw), name, direction);
            m_fault.leavePort();
        });
    }
    return type;
}

CellType &OtherCellTypes::blackBox(std::string_view raw, std::optional<json::object> &directions)
{
    const auto sameText = m_blackBoxes.find(raw);
    if (sameText != m_blackBoxes.end()) {
        // Cells need not tell the ports that they leave open.
        if (directions) {
            addDirections(*sameText->second, *directions);
        }
        return *sameText->second;
    }
    const std::string_view name = m_text.keep(m_text.text(raw));
    if (!directions) {
        m_fault.fail("cell of unknown type '" + std::string(name) + "' without \"port_directions\"");
    }
    CellType *&sameName = m_blackBoxNames[name];
    if (sameName == nullptr) {
        sameName = &makeBlackBox(name, *directions);
    }
    addDirections(*sameName, *directions);
    m_blackBoxes.emplace(m_text.keep(raw), sameName);
    return *sameName;
}

CellType &OtherCellTypes::makeBlackBox(std::string_view name, json::object &directions)
{
    DeviceMatch device;
    if (m_devices.knows(name)) {
        m_portNames.clear();
        check(directions.reset().error());
        eachField(directions, [&](std::string_view raw, json::value &) { m_portNames.push_back(m_text.text(raw)); });
        device = m_devices.find(name, m_portNames);
    }
    const Home home = device ? DeviceCells::homeOf(*device.cell) : Home::Work;
    CellType &type = m_types.emplace_back(name, m_design.add(home, name));
    type.netlist()->MakeBlackBox();
    if (device) {
        m_devices.adopt(type, device);
    }
    return type;
}

void OtherCellTypes::addDirections(CellType &type, json::object &directions)
{
    check(directions.reset().error());
    eachField(directions, [&](std::string_view raw, json::value &value) {
        const std::string_view name = m_text.text(raw);
        m_fault.enterPort(name);
        const unsigned direction = readDirection(value, m_text, m_fault);
        const CellType::Group *known = type.findByName(name);
        if (known == nullptr) {
            type.declare(m_text.keep(raw), m_text.keep(name), direction);
        } else if (known->direction != direction) {
            m_fault.fail("the port has another direction here than before");
        }
        m_fault.leavePort();
    });
}

Verific::Netlist *OtherCellTypes::constant(unsigned constant)
{
    Verific::Netlist *&netlist = m_constants[constant];
    if (netlist == nullptr) {
        const ConstantCell &cell = CONSTANT_CELLS[constant];
        netlist = m_design.add(Home::Constants, cell.name);
        addPort(*netlist, "Y", Verific::DIR_OUT);
        makePrimitive(*netlist, cell.primitive, nullptr);
    }
    return netlist;
}

void OtherCellTypes::finish()
{
    for (const auto &[name, type] : m_blackBoxNames) {
        for (CellType::Group &group : type->groups()) {
            if (!group.widthKnown) {
                type->define(group, ONE_BIT, m_scratch);
            }
        }
    }
    for (const Internal &each : m_internals) {
        Verific::Netlist &netlist = *each.type->netlist();
        const auto portOf = [&](std::string_view name) -> Verific::Port * {
            const CellType::Group *group = name.empty() ? nullptr : each.type->findByName(name);
            const bool made = group != nullptr && group->widthKnown && group->range.width > 0;
            return made ? each.type->pins()[group->firstPin] : nullptr;
        };
        if (each.meaning.primitive != Verific::PRIM_NONE) {
            makePrimitive(netlist, each.meaning.primitive, portOf(each.meaning.input));
        } else {
            makeOperator(netlist);
        }
        makeRegister(netlist, portOf(each.meaning.clock));
    }
}

} // namespace kvr::netlistdb::yosys
