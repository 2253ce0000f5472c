#pragma once

#include "CellType.h"
#include "LooseDesign.h"

#include <deque>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb::yosys {

/// One netlist of a cell type, for cells with the same clocks: a netlist is a register with one clock or none, and
/// its ports say which pins are clocks in use.
struct CellView {
    CellType *base = nullptr; ///< the type that the file names
    CellType *type = nullptr; ///< the ports of this netlist: the type itself for the first view
    unsigned clock = 0;       ///< pin of the base, or CellPlan::NO_CLOCK
    std::vector<unsigned> clocks;
    std::vector<Verific::Port *> ports; ///< by pin of the base; null while nothing is connected there
    Verific::Port *bufferInput = nullptr;
};

/// The views of all cell types.
class CellViews {
  public:
    explicit CellViews(LooseDesign &design) : m_design(design) {}

    /// The view of @p base whose register clock is pin @p clock, @p clocks being all clock pins in use.
    CellView &of(CellType &base, unsigned clock, const std::vector<unsigned> &clocks);
    /// The port of @p view for pin @p pin of its base; made when it is not there yet.
    Verific::Port *port(CellView &view, unsigned pin);
    /// The port "I" of a clock buffer whose table calls it otherwise: one more port on the same net.
    Verific::Port *bufferInput(CellView &view);

    /// Marks registers and clock ports of the views that were made since the last call.
    void settle();

  private:
    void makeGroup(CellView &view, const CellType::Group &group);
    void settle(CellView &view);

    LooseDesign &m_design;
    CText m_scratch;
    std::deque<CellType> m_types;
    std::deque<CellView> m_views;
    std::unordered_map<const CellType *, std::vector<CellView *>> m_ofTypes;
    std::size_t m_settled = 0;
};

} // namespace kvr::netlistdb::yosys
