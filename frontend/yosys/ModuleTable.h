#pragma once

#include "Attributes.h"
#include "CellType.h"
#include "DeviceCells.h"
#include "LooseDesign.h"
#include "UserModuleName.h"

#include <deque>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb::yosys {

/// A module of the file, its ports made, its body not read yet.
struct Module {
    Module(std::string_view name, Verific::Netlist *netlist, unsigned number) : type(name, netlist, number) {}

    CellType type;
    UserModuleName userName;   ///< empty when the module has it
    std::vector<Bit> portBits; ///< the bit on each of type.pins()
    std::optional<Section> netNames;
    std::optional<Section> memories;
    std::optional<Section> cells;
    std::size_t textSize = 0; ///< bytes of the module in the file
    bool blackBox = false;
    bool markedTop = false;
    bool instantiated = false;
    std::vector<unsigned> uses; ///< numbers of the modules that it instantiates, each once
};

/// The modules of one file.
class ModuleTable {
  public:
    ModuleTable(JsonText &text, ReadFault &fault, AttributeReader &attributes, LooseDesign &design,
                DeviceCells &devices)
        : m_text(text), m_fault(fault), m_attributes(attributes), m_design(design), m_devices(devices)
    {
    }

    /// Reads the modules' attributes and ports, makes their netlists and notes where their bodies are.
    void read(json::object &modules);

    std::deque<Module> &modules() { return m_modules; }
    /// The module that a cell of type @p raw (as written between its quotes) instantiates, or null.
    CellType *find(std::string_view raw)
    {
        const auto found = m_byRaw.find(raw);
        return found != m_byRaw.end() ? found->second : nullptr;
    }
    CellType *findByName(std::string_view name);

  private:
    void readModule(std::string_view raw, json::value &value);
    void readPorts(Module &module, json::object &ports);
    /// The device cell that the module is a black box of.
    DeviceMatch deviceCell(std::string_view name, json::object &module);

    JsonText &m_text;
    ReadFault &m_fault;
    AttributeReader &m_attributes;
    LooseDesign &m_design;
    DeviceCells &m_devices;
    CText m_scratch;
    TextBuffer m_valueBuffer;
    std::deque<Module> m_modules;
    std::unordered_map<std::string_view, CellType *> m_byRaw;
    std::unordered_map<std::string_view, CellType *> m_byName;
};

} // namespace kvr::netlistdb::yosys
