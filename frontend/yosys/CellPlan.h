#pragma once

#include "CellType.h"
#include "WordCells.h"

#include <functional>
#include <vector>

namespace kvr::netlistdb::yosys {

/// How one cell becomes instances, so that each of its outputs has one clock: the first part has the cell's name and
/// its inputs. All pins are places in CellType::pins().
struct CellPlan {
    static constexpr unsigned NO_CLOCK = 0xFFFFFFFFu;

    struct Part {
        unsigned clock = NO_CLOCK; ///< pin that clocks the outputs of the part
        bool opaque = false;       ///< the outputs depend on nothing that is known
        std::vector<unsigned> outputs;
    };
    std::vector<Part> parts;
    std::vector<unsigned> clocks;      ///< clock pins in use, the first part's own one first
    std::vector<unsigned> otherClocks; ///< those whose net clocks no part: of a memory that is written, for instance
    bool isBuffer = false;             ///< a clock buffer or gate: the cell is one part

    Part &addPart()
    {
        parts.emplace_back();
        return parts.back();
    }
};

/// The pin that a table calls @p name, `name` or `name[position]`: its place in CellType::pins(), or NO_CLOCK.
unsigned pinCalled(CellType &type, std::string_view name);

/// Finds out what clocks the outputs of cells.
class CellPlanner {
  public:
    using IsConstant = std::function<bool(const Verific::Net *)>;

    explicit CellPlanner(IsConstant isConstant) : m_isConstant(std::move(isConstant)) {}

    /// The plan for a cell of @p type whose pins are on @p nets (null: not connected). Valid until the next call.
    const CellPlan &plan(CellType &type, const std::vector<Verific::Net *> &nets, const ParameterLookup &parameter);

  private:
    void collectClocks(const CellType &type, const std::vector<Verific::Net *> &nets, const ParameterLookup &parameter);

    IsConstant m_isConstant;
    CellPlan m_plan;
    std::vector<const ClockPin *> m_inUse;
    std::vector<char> m_clocked; ///< by pin: some part has it
};

} // namespace kvr::netlistdb::yosys
