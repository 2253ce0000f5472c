#pragma once

#include "CellParts.h"
#include "ModuleTable.h"
#include "NetReader.h"
#include "OtherCellTypes.h"
#include "Progress.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace kvr::netlistdb::yosys {

/// Reads the bodies of modules: nets, memories and cells. One reader serves all modules, one after the other, so that
/// its tables are allocated once.
class ModuleReader {
  public:
    ModuleReader(JsonText &text, ReadFault &fault, AttributeReader &attributes, ModuleTable &modules,
                 OtherCellTypes &others, CellParts &parts, Progress &progress)
        : m_text(text), m_fault(fault), m_attributes(attributes), m_modules(modules), m_others(others), m_parts(parts),
          m_progress(progress), m_nets(text, fault, attributes, progress), m_planner([this](const Verific::Net *net) {
              const auto &constants = m_nets.constantNets();
              return std::find(constants.begin(), constants.end(), net) != constants.end();
          })
    {
    }

    /// Adds a cell type that names of nets may be derived from.
    void addDeviceCell(CellType &type) { m_nets.derivedNames().addCellType(type); }
    void read(Module &module);

  private:
    /// The parts of a cell that were met before it was known what the cell is.
    struct FileParts {
        std::optional<json::object> parameters;
        std::optional<json::object> attributes;
        std::optional<json::object> directions;
        std::optional<json::object> connections;
    };
    /// An output pin that is tied to a constant; connected last, so that the constant stays the net's driver.
    struct LatePin {
        Verific::Instance *inst;
        Verific::Port *port;
        Verific::Net *net;
    };

    void readMemories(const Section &memories);

    void readCells(const Section &cells);
    void readCell(std::string_view raw, json::value &value);
    void noteUse(const CellType &type);
    Verific::Instance *addCell(std::string_view name, const CellType &type);
    /// Makes the instances of a cell whose type is planned.
    Verific::Instance *addPlannedCell(std::string_view name, CellType &type, FileParts &file);
    void readConnections(json::object &connections, CellType &type);
    /// Connects the pins that readConnections() found.
    void connect(Verific::Instance &inst, const CellType &type);
    CellType::Group &groupOf(CellType &type, std::string_view raw, unsigned position);
    void addConstantDrivers();

    JsonText &m_text;
    ReadFault &m_fault;
    AttributeReader &m_attributes;
    ModuleTable &m_modules;
    OtherCellTypes &m_others;
    CellParts &m_parts;
    Progress &m_progress;
    NetReader m_nets;
    CellPlanner m_planner;
    CText m_scratch;
    TextBuffer m_nameBuffer;
    TextBuffer m_portBuffer;

    // Of the module that is being read.
    Module *m_module = nullptr;
    Verific::Netlist *m_netlist = nullptr;
    std::unordered_set<std::string> m_reservedCells; ///< names of cells that look made up
    std::vector<LatePin> m_latePins;
    std::vector<unsigned> m_usedBy; ///< by number of module: the latest module met that instantiates it

    // Of the cell that is being read.
    std::vector<Verific::Net *> m_pinNets;
    std::vector<Bit> m_pinBits;
    std::vector<std::pair<unsigned, Verific::Net *>> m_constantOutputs; ///< pins that are tied to a constant
    std::vector<std::pair<std::string_view, std::string_view>> m_parameters;
    std::uint64_t m_cellNumber = 0;
};

} // namespace kvr::netlistdb::yosys
