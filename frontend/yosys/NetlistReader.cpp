#include "NetlistReader.h"

#include "Hierarchy.h"
#include "ModuleReader.h"

#include <algorithm>
#include <new>

namespace kvr::netlistdb::yosys {

namespace {

/// Where in @p text the parser is: " at line 3, column 14".
std::string placeOf(std::string_view text, json::document &document)
{
    const char *place = nullptr;
    if (document.current_location().get(place) != simdjson::SUCCESS || place < text.data() ||
        place > text.data() + text.size()) {
        return " at its end";
    }
    const std::string_view before = text.substr(0, static_cast<std::size_t>(place - text.data()));
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t lineStart = before.rfind('\n') + 1; // npos + 1 is 0
    return " at line " + std::to_string(line) + ", column " + std::to_string(before.size() - lineStart + 1);
}

/// Reads one document. Keeps the texts that the ReadFault points at.
class Reading {
  public:
    Reading(const json::parser &parser, std::size_t size, ReadFault &fault, const ReadOptions &options)
        : m_fault(fault), m_options(options), m_progress(options, size), m_text(parser, fault), m_attributes(m_text),
          m_devices(options.cellTables), m_modules(m_text, fault, m_attributes, m_design, m_devices),
          m_others(m_text, fault, m_attributes, m_design, m_devices), m_parts(m_design),
          m_reader(m_text, fault, m_attributes, m_modules, m_others, m_parts, m_progress)
    {
    }

    Verific::Netlist *read(json::document &document)
    {
        findModules(document);
        for (Module &module : m_modules.modules()) {
            if (module.blackBox) {
                m_reader.addDeviceCell(module.type);
            }
        }
        for (Module &module : m_modules.modules()) {
            m_reader.read(module);
        }
        refuseRecursion(m_modules.modules(), m_fault);
        Verific::Netlist *top = chooseTop(m_modules.modules(), m_options.top, m_fault).type.netlist();
        m_others.finish();
        m_devices.finish();
        m_parts.finish();
        m_progress.finish();
        m_design.attach();
        return top;
    }

  private:
    void findModules(json::document &document);

    ReadFault &m_fault;
    const ReadOptions &m_options;
    Progress m_progress;
    JsonText m_text;
    AttributeReader m_attributes;
    LooseDesign m_design;
    DeviceCells m_devices;
    ModuleTable m_modules;
    OtherCellTypes m_others;
    CellParts m_parts;
    ModuleReader m_reader;
};

void Reading::findModules(json::document &document)
{
    json::json_type type;
    check(document.type().get(type));
    if (type != json::json_type::object) {
        m_fault.fail("not a yosys netlist: the file holds no JSON object");
    }
    json::object root;
    check(document.get_object().get(root));
    bool found = false;
    eachField(root, [&](std::string_view key, json::value &value) {
        if (key == "modules") {
            if (found) {
                m_fault.fail("\"modules\" appears in the file twice");
            }
            found = true;
            json::object object = m_text.object(value, "\"modules\"");
            m_modules.read(object);
        } else {
            m_text.passOver(value);
        }
    });
    const char *rest = nullptr;
    if (document.current_location().get(rest) == simdjson::SUCCESS) {
        check(simdjson::TRAILING_CONTENT);
    }
    if (!found) {
        m_fault.fail("not a yosys netlist: it has no \"modules\"");
    }
}

} // namespace

Verific::Netlist *readJsonText(simdjson::padded_string_view text, const std::string &name, const ReadOptions &options)
{
    ReadFault fault(name);
    json::parser parser;
    json::document document;
    const simdjson::error_code error = parser.iterate(text).get(document);
    if (error == simdjson::MEMALLOC) {
        throw std::bad_alloc();
    }
    if (error == simdjson::EMPTY) {
        fault.fail("the file is empty");
    }
    if (error != simdjson::SUCCESS) {
        fault.fail(std::string("not valid JSON: ") + simdjson::error_message(error));
    }
    Reading reading(parser, text.size(), fault, options);
    try {
        return reading.read(document);
    } catch (const simdjson::simdjson_error &broken) {
        fault.fail("not valid JSON" + placeOf({text.data(), text.size()}, document) + ": " + broken.what());
    }
}

} // namespace kvr::netlistdb::yosys
