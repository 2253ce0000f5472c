#include "ModuleTable.h"

#include "BitReader.h"
#include "WordCells.h"

namespace kvr::netlistdb::yosys {

namespace {

/// Modules that yosys made up have names like `$abc`; those that it derived from a module of the user with parameters
/// stand in the user's source.
bool isGenerated(std::string_view module)
{
    constexpr std::string_view derived = "$paramod";
    return module.substr(0, 1) == "$" && module.substr(0, derived.size()) != derived;
}

} // namespace

void ModuleTable::read(json::object &modules)
{
    eachField(modules, [&](std::string_view raw, json::value &value) { readModule(raw, value); });
}

CellType *ModuleTable::findByName(std::string_view name)
{
    const auto found = m_byName.find(name);
    return found != m_byName.end() ? found->second : nullptr;
}

void ModuleTable::readModule(std::string_view raw, json::value &value)
{
    const std::string_view name = m_text.text(raw);
    m_fault.enterModule(name);
    json::object object = m_text.object(value, "a module");
    if (m_byName.count(name) != 0) {
        m_fault.fail("the module appears in the file twice");
    }
    const DeviceMatch device = m_devices.knows(name) ? deviceCell(name, object) : DeviceMatch();
    Verific::Netlist *netlist = m_design.add(device ? DeviceCells::homeOf(*device.cell) : Home::Work, name);
    Module &module = m_modules.emplace_back(name, netlist, static_cast<unsigned>(m_modules.size()));
    m_byRaw.emplace(raw, &module.type);
    m_byName.emplace(name, &module.type);

    const char *end = raw.data();
    bool portsRead = false;
    std::vector<std::pair<std::string, std::string>> parameters;
    std::size_t sizeInFile = 0;
    const auto once = [&](std::optional<Section> &part, json::value &field, const char *what) {
        if (part) {
            m_fault.fail(std::string(what) + " appears in the module twice");
        }
        part = m_text.section(field, what);
        sizeInFile += part->sizeInFile();
    };
    eachField(object, [&](std::string_view key, json::value &field) {
        end = key.data();
        if (key == "attributes") {
            json::object attributes = m_text.object(field, "\"attributes\"");
            m_attributes.apply(attributes, *netlist, isGenerated(name) ? Source::Dropped : Source::OfNet,
                               [&](std::string_view attribute, std::string_view text) {
                                   module.markedTop |= attribute == "top" && isNonZero(text);
                                   module.blackBox |=
                                       (attribute == "blackbox" || attribute == "whitebox") && isNonZero(text);
                               });
        } else if (key == "ports") {
            if (portsRead) {
                m_fault.fail("\"ports\" appears in the module twice");
            }
            portsRead = true;
            json::object ports = m_text.object(field, "\"ports\"");
            readPorts(module, ports);
        } else if (key == "parameter_default_values") {
            json::object values = m_text.object(field, "\"parameter_default_values\"");
            m_attributes.eachParameter(values, [&](std::string_view parameter, std::string_view text) {
                parameters.emplace_back(parameter, text);
            });
        } else if (key == "netnames") {
            once(module.netNames, field, "\"netnames\"");
        } else if (key == "memories") {
            once(module.memories, field, "\"memories\"");
        } else if (key == "cells") {
            once(module.cells, field, "\"cells\"");
        } else {
            m_text.passOver(field);
        }
    });
    module.textSize = static_cast<std::size_t>(end - raw.data()) + sizeInFile;
    if (module.blackBox) {
        netlist->MakeBlackBox();
    }
    if (device) {
        m_devices.adopt(module.type, device);
    }
    module.userName = userModuleName(name, parameters);
    if (!module.userName.module.empty()) {
        addAttribute(*netlist, USER_MODULE, module.userName.text.c_str());
    }
    m_fault.leaveModule();
}

DeviceMatch ModuleTable::deviceCell(std::string_view name, json::object &module)
{
    bool isBlackBox = false;
    std::vector<std::string_view> ports;
    eachField(module, [&](std::string_view key, json::value &field) {
        if (key == "attributes") {
            json::object attributes = m_text.object(field, "\"attributes\"");
            eachField(attributes, [&](std::string_view attribute, json::value &value) {
                const std::string_view text = m_text.attributeValue(value, m_valueBuffer, "an attribute");
                isBlackBox |= (attribute == "blackbox" || attribute == "whitebox") && isNonZero(text);
            });
        } else if (key == "ports") {
            json::object object = m_text.object(field, "\"ports\"");
            eachField(object, [&](std::string_view raw, json::value &value) {
                ports.push_back(m_text.text(raw));
                m_text.passOver(value);
            });
        } else {
            m_text.passOver(field);
        }
    });
    check(module.reset().error());
    return isBlackBox ? m_devices.find(name, ports) : DeviceMatch();
}

void ModuleTable::readPorts(Module &module, json::object &ports)
{
    eachField(ports, [&](std::string_view raw, json::value &value) {
        const std::string_view name = m_text.text(raw);
        m_fault.enterItem("port", name);
        json::object object = m_text.object(value, "a port");
        unsigned direction = Verific::DIR_NONE;
        VectorRange range;
        const std::size_t firstBit = module.portBits.size();
        bool bitsRead = false;
        eachField(object, [&](std::string_view key, json::value &field) {
            if (key == "direction") {
                direction = readDirection(field, m_text, m_fault);
            } else if (key == "bits") {
                json::array bits = m_text.array(field, "\"bits\"");
                if (bitsRead) {
                    m_fault.fail("\"bits\" appears twice");
                }
                bitsRead = true;
                eachElement(bits, [&](json::value &bit) { module.portBits.push_back(readBit(bit, m_fault)); });
            } else if (key == "offset") {
                range.offset = m_text.integer(field, "\"offset\"");
            } else if (key == "upto") {
                range.upto = m_text.flag(field, "\"upto\"");
            } else {
                m_text.passOver(field);
            }
        });
        if (direction == Verific::DIR_NONE) {
            m_fault.fail("the port has no \"direction\"");
        }
        if (!bitsRead) {
            m_fault.fail("the port has no \"bits\"");
        }
        setWidth(range, module.portBits.size() - firstBit, name, m_fault);
        CellType::Group *group = module.type.declare(raw, name, direction);
        if (group == nullptr) {
            m_fault.fail("the port appears in the module twice");
        }
        module.type.define(*group, range, m_scratch);
    });
    m_fault.leaveItem();
}

} // namespace kvr::netlistdb::yosys
