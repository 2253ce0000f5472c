#include "CellViews.h"

#include "CellPlan.h"
#include "CellTable.h"

#include <algorithm>

namespace kvr::netlistdb::yosys {

namespace {

constexpr const char *IS_CLOCK = "KVR_ATTRIBUTE_PORT__IS_CLOCK";

void copyAttributes(const Verific::DesignObj &from, Verific::DesignObj &to)
{
    Verific::MapIter mi;
    Verific::Att *attribute = nullptr;
    FOREACH_ATTRIBUTE (&from, mi, attribute) {
        if (to.GetAtt(attribute->Key()) == nullptr) {
            addAttribute(to, attribute->Key(), attribute->Value());
        }
    }
}

} // namespace

CellView &CellViews::of(CellType &base, unsigned clock, const std::vector<unsigned> &clocks)
{
    std::vector<CellView *> &views = m_ofTypes[&base];
    const auto known = std::find_if(views.begin(), views.end(), [&](const CellView *each) {
        return each->clock == clock && each->clocks == clocks;
    });
    if (known != views.end()) {
        return **known;
    }
    CellView &view = m_views.emplace_back();
    view.base = &base;
    view.clock = clock;
    view.clocks = clocks;
    view.type =
        views.empty() ? &base : &m_types.emplace_back(base.name(), m_design.add(base.home, base.name()), base.module());
    views.push_back(&view);
    return view;
}

void CellViews::makeGroup(CellView &view, const CellType::Group &group)
{
    CellType &type = *view.type;
    CellType::Group *own = type.declare(group.raw, group.name, group.direction);
    type.define(*own, group.range, m_scratch);
    for (unsigned position = 0; position < group.range.width; ++position) {
        view.ports[group.firstPin + position] = type.pins()[own->firstPin + position];
    }
}

Verific::Port *CellViews::port(CellView &view, unsigned pin)
{
    if (view.type == view.base) {
        return view.base->pins()[pin];
    }
    if (view.ports.size() < view.base->pins().size()) {
        view.ports.resize(view.base->pins().size(), nullptr);
    }
    if (view.ports[pin] == nullptr) {
        for (const CellType::Group &group : view.base->groups()) {
            if (group.widthKnown && pin >= group.firstPin && pin < group.firstPin + group.range.width) {
                makeGroup(view, group);
                break;
            }
        }
    }
    return view.ports[pin];
}

Verific::Port *CellViews::bufferInput(CellView &view)
{
    if (view.bufferInput == nullptr) {
        view.bufferInput = addPort(*view.type->netlist(), "I", Verific::DIR_IN);
    }
    return view.bufferInput;
}

void CellViews::settle()
{
    for (; m_settled < m_views.size(); ++m_settled) {
        settle(m_views[m_settled]);
    }
}

void CellViews::settle(CellView &view)
{
    const CellType &base = *view.base;
    Verific::Netlist &netlist = *view.type->netlist();
    if (base.device == nullptr) {
        makeOperator(netlist);
    } else if (view.type != view.base) {
        if (base.netlist()->IsBlackBox() != 0) {
            netlist.MakeBlackBox();
        }
        if (base.home == Home::Primitives) {
            makePrimitive(netlist, Verific::PRIM_OTHER, nullptr);
        }
        copyAttributes(*base.netlist(), netlist);
        for (std::size_t pin = 0; pin < view.ports.size(); ++pin) {
            if (view.ports[pin] != nullptr) {
                copyAttributes(*base.pins()[pin], *view.ports[pin]);
            }
        }
    }
    if (base.device != nullptr) {
        for (const unsigned pin : view.clocks) {
            Verific::Port *clock = port(view, pin);
            if (clock->GetAtt(IS_CLOCK) == nullptr) {
                addAttribute(*clock, IS_CLOCK, "TRUE");
            }
        }
    }
    if (view.clock != CellPlan::NO_CLOCK) {
        makeRegister(netlist, port(view, view.clock));
    }
}

} // namespace kvr::netlistdb::yosys
