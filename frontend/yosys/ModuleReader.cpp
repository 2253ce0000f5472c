#include "ModuleReader.h"

#include "BitReader.h"
#include "MadeUpNames.h"

#include <limits>

namespace kvr::netlistdb::yosys {

void ModuleReader::read(Module &module)
{
    m_module = &module;
    m_netlist = module.type.netlist();
    m_fault.enterModule(module.type.name());
    m_reservedCells.clear();
    m_latePins.clear();
    m_usedBy.resize(m_modules.modules().size(), CellType::NO_MODULE);

    m_nets.read(module);
    if (module.memories) {
        readMemories(*module.memories);
    }
    if (module.cells) {
        readCells(*module.cells);
    }
    m_parts.endModule(*m_netlist);
    addConstantDrivers();
    m_nets.finish();
    m_fault.leaveModule();
}

void ModuleReader::readMemories(const Section &memories)
{
    m_text.eachFieldOf(memories, [&](std::string_view raw, json::value &value) {
        const std::string_view text = m_text.text(raw, m_nameBuffer);
        m_fault.enterItem("memory", text);
        json::object object = m_text.object(value, "a memory");
        int width = -1;
        int size = -1;
        bool hidden = looksGenerated(text);
        std::optional<json::object> attributes;
        eachField(object, [&](std::string_view key, json::value &field) {
            if (key == "width") {
                width = m_text.integer(field, "\"width\"");
            } else if (key == "size") {
                size = m_text.integer(field, "\"size\"");
            } else if (key == "hide_name") {
                hidden = m_text.flag(field, "\"hide_name\"");
            } else if (key == "attributes") {
                attributes = m_text.object(field, "\"attributes\"");
            } else {
                m_text.passOver(field);
            }
        });
        if (width < 0 || size < 0) {
            m_fault.fail("a memory must have a \"width\" and a \"size\" that are not negative");
        }
        const std::uint64_t bits = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(size);
        if (bits > std::numeric_limits<unsigned>::max()) {
            m_fault.fail("a memory of " + std::to_string(size) + " words of " + std::to_string(width) +
                         " bits is too large: at most 4294967295 bits");
        }
        Verific::Net *memory = addMemory(*m_netlist, m_scratch.of(text), static_cast<unsigned>(bits));
        if (attributes) {
            check(attributes->reset().error());
            m_attributes.apply(*attributes, *memory, hidden ? Source::Dropped : Source::OfNet);
        }
    });
    m_fault.leaveItem();
}

void ModuleReader::readCells(const Section &cells)
{
    m_progress.eachFieldOf(m_text, cells, [&](std::string_view raw, json::value &value) { readCell(raw, value); });
    m_fault.leaveItem();
}

void ModuleReader::readCell(std::string_view raw, json::value &value)
{
    const std::string_view name = m_text.text(raw, m_nameBuffer);
    m_fault.enterItem("cell", name);
    ++m_cellNumber;
    if (looksMadeUp(name)) {
        m_reservedCells.emplace(name);
    }
    json::object object = m_text.object(value, "a cell");
    bool hidden = looksGenerated(name);
    std::string_view rawType;
    CellType *type = nullptr;
    Verific::Instance *inst = nullptr;
    FileParts later;
    unsigned met = 0;
    const auto once = [&](unsigned part, std::string_view key) {
        if ((met & part) != 0) {
            m_fault.fail("\"" + std::string(key) + "\" appears in the cell twice");
        }
        met |= part;
    };
    // In files of yosys the type comes before everything that needs it. Where the type is a module, every part is used
    // as it comes; otherwise the parts are put aside until all are known.
    eachField(object, [&](std::string_view key, json::value &field) {
        if (key == "connections") {
            once(1, key);
            json::object part = m_text.object(field, "\"connections\"");
            if (inst != nullptr) {
                readConnections(part, *type);
                connect(*inst, *type);
            } else {
                later.connections = part;
            }
        } else if (key == "port_directions") {
            once(2, key);
            json::object part = m_text.object(field, "\"port_directions\"");
            eachField(part, [&](std::string_view, json::value &each) { m_text.rawString(each, "a port direction"); });
            later.directions = part;
        } else if (key == "attributes") {
            once(4, key);
            json::object part = m_text.object(field, "\"attributes\"");
            if (inst != nullptr) {
                m_attributes.apply(part, *inst, Source::OfInstance);
            } else {
                later.attributes = part;
            }
        } else if (key == "parameters") {
            once(8, key);
            json::object part = m_text.object(field, "\"parameters\"");
            if (inst != nullptr) {
                m_attributes.applyParameters(part, *inst);
            } else {
                later.parameters = part;
            }
        } else if (key == "type") {
            once(16, key);
            rawType = m_text.rawString(field, "\"type\"");
            type = m_modules.find(rawType);
            if (type != nullptr && !type->isPlanned) {
                inst = addCell(name, *type);
            }
        } else if (key == "hide_name") {
            hidden = m_text.flag(field, "\"hide_name\"");
        } else {
            m_text.passOver(field);
        }
    });
    if (rawType.data() == nullptr) {
        m_fault.fail("the cell has no \"type\"");
    }
    if (type == nullptr && isAnnotation(rawType)) {
        return;
    }
    if (type == nullptr) {
        type = m_modules.findByName(m_text.text(rawType, m_portBuffer));
        if (type == nullptr) {
            type = &m_others.find(rawType, later.parameters, later.directions, later.connections);
        }
    }
    if (type->isPlanned) {
        inst = addPlannedCell(name, *type, later);
        later = {};
    } else if (inst == nullptr) {
        inst = addCell(name, *type);
    }
    if (later.attributes) {
        check(later.attributes->reset().error());
        m_attributes.apply(*later.attributes, *inst, Source::OfInstance);
    }
    if (later.parameters) {
        check(later.parameters->reset().error());
        m_attributes.applyParameters(*later.parameters, *inst);
    }
    if (later.connections) {
        check(later.connections->reset().error());
        readConnections(*later.connections, *type);
        connect(*inst, *type);
    }
    if (type->device != nullptr) {
        m_parts.nameCell(*inst, *type);
    }
    if (hidden) {
        setPosition(*inst, 0);
    }
}

void ModuleReader::noteUse(const CellType &type)
{
    if (type.module() != CellType::NO_MODULE && m_usedBy[type.module()] != m_module->type.module()) {
        m_usedBy[type.module()] = m_module->type.module();
        m_module->uses.push_back(type.module());
        m_modules.modules()[type.module()].instantiated = true;
    }
}

Verific::Instance *ModuleReader::addCell(std::string_view name, const CellType &type)
{
    noteUse(type);
    return addInstance(*m_netlist, m_scratch.of(name), type.netlist());
}

Verific::Instance *ModuleReader::addPlannedCell(std::string_view name, CellType &type, FileParts &file)
{
    noteUse(type);
    m_parameters.clear();
    if (file.parameters) {
        check(file.parameters->reset().error());
        m_attributes.eachParameter(*file.parameters, [&](std::string_view key, std::string_view value) {
            m_parameters.emplace_back(key, value);
        });
    }
    if (file.connections) {
        check(file.connections->reset().error());
        readConnections(*file.connections, type);
    }
    m_pinNets.resize(std::max(m_pinNets.size(), type.pins().size()), nullptr);
    const CellPlan &plan = m_planner.plan(type, m_pinNets, [this](std::string_view key) -> std::string_view {
        for (const auto &[each, value] : m_parameters) {
            if (each == key) {
                return value;
            }
        }
        return {};
    });
    Verific::Instance *inst = m_parts.add(*m_netlist, m_scratch.of(name), type, plan);
    if (file.attributes) {
        check(file.attributes->reset().error());
        m_attributes.apply(*file.attributes, *inst, Source::OfInstance);
    }
    if (file.parameters) {
        check(file.parameters->reset().error());
        m_attributes.applyParameters(*file.parameters, *inst);
    }
    m_parts.connect(*inst, type, plan, m_pinNets);
    for (const auto &[pin, net] : m_constantOutputs) {
        m_latePins.push_back({inst, m_parts.portOf(pin), net});
    }
    std::fill(m_pinNets.begin(), m_pinNets.end(), nullptr);
    return inst;
}

CellType::Group &ModuleReader::groupOf(CellType &type, std::string_view raw, unsigned position)
{
    CellType::Group *group = type.find(raw, position);
    if (group != nullptr) {
        return *group;
    }
    const std::string_view name = m_text.text(raw, m_portBuffer);
    m_fault.enterPort(name);
    group = type.findByName(name);
    if (group == nullptr) {
        m_fault.fail("cell type '" + std::string(type.name()) + "' has no such port");
    }
    return *group;
}

void ModuleReader::readConnections(json::object &connections, CellType &type)
{
    unsigned position = 0;
    m_constantOutputs.clear();
    eachField(connections, [&](std::string_view raw, json::value &value) {
        CellType::Group &group = groupOf(type, raw, position++);
        m_fault.enterPort(group.name);
        if (group.connectedBy == m_cellNumber) {
            m_fault.fail("the port is connected twice");
        }
        group.connectedBy = m_cellNumber;
        m_pinBits.clear();
        json::array bits = m_text.array(value, "a connection");
        eachElement(bits, [&](json::value &bit) { m_pinBits.push_back(readBit(bit, m_fault)); });
        if (m_pinBits.empty()) {
            return; // left open
        }
        if (!group.widthKnown) {
            VectorRange range;
            setWidth(range, m_pinBits.size(), m_fault);
            type.define(group, range, m_scratch);
        } else if (group.range.width != m_pinBits.size()) {
            m_fault.fail("the connection is " + std::to_string(m_pinBits.size()) +
                         " wide, but the port of cell type '" + std::string(type.name()) + "' is " +
                         std::to_string(group.range.width));
        }
        if (m_pinNets.size() < type.pins().size()) {
            m_pinNets.resize(type.pins().size(), nullptr);
        }
        for (std::size_t at = 0; at < m_pinBits.size(); ++at) {
            Verific::Net *net = m_nets.netOf(m_pinBits[at]);
            if (isConstant(m_pinBits[at]) && group.direction == Verific::DIR_OUT) {
                m_constantOutputs.emplace_back(group.firstPin + static_cast<unsigned>(at), net);
            } else {
                m_pinNets[group.firstPin + at] = net;
            }
        }
    });
    m_fault.leavePort();
}

void ModuleReader::connect(Verific::Instance &inst, const CellType &type)
{
    for (const auto &[pin, net] : m_constantOutputs) {
        m_latePins.push_back({&inst, type.pins()[pin], net});
    }
    // In the order of the ports, whatever the order in the file: look-up by port is quickest then.
    const std::vector<Verific::Port *> &pins = type.pins();
    const std::size_t count = std::min(pins.size(), m_pinNets.size());
    for (std::size_t at = 0; at < count; ++at) {
        if (m_pinNets[at] != nullptr) {
            inst.Connect(pins[at], m_pinNets[at]);
            m_pinNets[at] = nullptr;
        }
    }
}

void ModuleReader::addConstantDrivers()
{
    for (unsigned constant = 0; constant < CONSTANTS; ++constant) {
        Verific::Net *net = m_nets.constantNets()[constant];
        if (net == nullptr) {
            continue;
        }
        Verific::Netlist *driver = m_others.constant(constant);
        const std::string name = freeName(std::string(CONSTANT) + CONSTANT_NAMES[constant], m_reservedCells);
        addInstance(*m_netlist, name.c_str(), driver)->Connect(driver->GetPort("Y"), net);
    }
    for (const LatePin &pin : m_latePins) {
        pin.inst->Connect(pin.port, pin.net);
    }
}

} // namespace kvr::netlistdb::yosys
