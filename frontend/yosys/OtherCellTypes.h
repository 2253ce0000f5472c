#pragma once

#include "Attributes.h"
#include "CellType.h"
#include "DeviceCells.h"
#include "LooseDesign.h"
#include "WordCells.h"

#include <array>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kvr::netlistdb::yosys {

/// The cell types that are no modules of the file: cells that yosys defines itself, black boxes that are known from
/// their uses alone, and the constants.
class OtherCellTypes {
  public:
    OtherCellTypes(JsonText &text, ReadFault &fault, AttributeReader &attributes, LooseDesign &design,
                   DeviceCells &devices)
        : m_text(text), m_fault(fault), m_attributes(attributes), m_design(design), m_devices(devices)
    {
    }

    /// The type of a cell; @p raw is its type as written between the quotes, the others are the cell's objects.
    /// Word-level cells and gates have one type for every set of parameters. Ports get their widths when they are first
    /// connected.
    CellType &find(std::string_view raw, std::optional<json::object> &parameters,
                   std::optional<json::object> &directions, std::optional<json::object> &connections);

    /// The netlist whose one output port drives constant number @p constant. Constants have a library of their own: one
    /// drives the logic of every clock, so that no clock may ever be remembered for it.
    Verific::Netlist *constant(unsigned constant);

    /// Settles what depends on all uses of the types: ports that were never connected, and the kinds of the netlists.
    void finish();

  private:
    struct Internal {
        CellType *type;
        CellMeaning meaning;
    };
    /// All types of one internal cell.
    struct Family {
        std::string_view name;
        std::unordered_map<std::string_view, CellType *> byText;  ///< parameters as written in the file
        std::unordered_map<std::string, CellType *> byParameters; ///< parameters in order of their names
    };

    /// Declares the ports in @p directions that @p type does not have yet.
    void addDirections(CellType &type, json::object &directions);
    CellType &internal(std::string_view raw, std::optional<json::object> &parameters,
                       std::optional<json::object> &directions, std::optional<json::object> &connections);
    CellType &blackBox(std::string_view raw, std::optional<json::object> &directions);
    CellType &makeBlackBox(std::string_view name, json::object &directions);
    CellType &makeInternal(Family &family, const std::vector<std::pair<std::string_view, std::string>> &parameters,
                           std::optional<json::object> &directions, std::optional<json::object> &connections);

    JsonText &m_text;
    ReadFault &m_fault;
    AttributeReader &m_attributes;
    LooseDesign &m_design;
    DeviceCells &m_devices;
    CText m_scratch;
    std::vector<std::string_view> m_portNames;
    std::deque<CellType> m_types;
    std::unordered_map<std::string_view, Family> m_families; ///< by type as written between the quotes
    std::vector<Internal> m_internals;
    std::unordered_map<std::string_view, CellType *> m_blackBoxes; ///< by type as written between the quotes
    std::unordered_map<std::string_view, CellType *> m_blackBoxNames;
    std::array<Verific::Netlist *, CONSTANTS> m_constants{};
};

} // namespace kvr::netlistdb::yosys
