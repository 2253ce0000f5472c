#include "NetlistReader.h"

#include "Hierarchy.h"
#include "ModuleReader.h"

#include <algorithm>
#include <new>

namespace kvr::netlistdb::yosys {

namespace {

/// Reads one document. Keeps the texts that the ReadFault points at.
class Reading {
  public:
    Reading(const JsonInput &text, ReadFault &fault, const ReadOptions &options)
        : m_fault(fault), m_options(options),
          m_progress(options, text.shortened != nullptr ? text.shortened->file().size() : text.size),
          m_text(text, fault), m_attributes(m_text), m_devices(options.cellTables),
          m_modules(m_text, fault, m_attributes, m_design, m_devices),
          m_others(m_text, fault, m_attributes, m_design, m_devices), m_parts(m_design),
          m_reader(m_text, fault, m_attributes, m_modules, m_others, m_parts, m_progress)
    {
    }

    /// @throws simdjson::simdjson_error  when this is not JSON at all
    json::document &open() { return m_text.open(); }

    Verific::Netlist *read(json::document &document)
    {
        findModules(document);
        m_text.close();
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
        m_text.finish();
        m_progress.finish();
        m_design.attach();
        return top;
    }

    std::string place() { return m_text.place(); }

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
    m_text.requireEnd();
    if (!found) {
        m_fault.fail("not a yosys netlist: it has no \"modules\"");
    }
}

} // namespace

Verific::Netlist *readJsonText(const JsonInput &text, const std::string &name, const ReadOptions &options)
{
    ReadFault fault(name);
    Reading reading(text, fault, options);
    json::document *document = nullptr;
    try {
        document = &reading.open();
    } catch (const simdjson::simdjson_error &broken) {
        if (broken.error() == simdjson::MEMALLOC) {
            throw std::bad_alloc();
        }
        fault.fail(broken.error() == simdjson::EMPTY ? "the file is empty"
                                                     : std::string("not valid JSON: ") + broken.what());
    }
    try {
        return reading.read(*document);
    } catch (const simdjson::simdjson_error &broken) {
        if (broken.error() == simdjson::MEMALLOC) {
            throw std::bad_alloc();
        }
        fault.fail("not valid JSON" + reading.place() + ": " + broken.what());
    }
}

} // namespace kvr::netlistdb::yosys
