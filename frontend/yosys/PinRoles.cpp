#include "PinRoles.h"

#include "CellPlan.h"
#include "CellTable.h"
#include "netlist_building.h"

#include <string>

namespace kvr::netlistdb::yosys {

namespace {

constexpr const char *ROLE = "NETLISTDB_PIN_ROLE";
constexpr const char *INVERTED_BY = "NETLISTDB_PIN_INVERTED_BY";

void mark(Verific::Port &port, const char *role)
{
    if (port.GetAtt(ROLE) == nullptr) {
        addAttribute(port, ROLE, role);
    }
}

const char *roleOf(ClockEdge edge)
{
    switch (edge) {
    case ClockEdge::Fall:
        return "clock-fall";
    case ClockEdge::Both:
        return "clock-both";
    default:
        return "clock-rise";
    }
}

std::string textOf(const CellCondition &condition)
{
    std::string text;
    for (const auto &[name, values] : condition) {
        text.append(text.empty() ? "" : " ").append(name).append("=");
        for (std::size_t each = 0; each < values.size(); ++each) {
            text.append(each == 0 ? "" : "|").append(values[each]);
        }
    }
    return text;
}

void markClocks(CellType &type)
{
    for (const CellClock &clock : type.device->clocks) {
        const unsigned pin = pinCalled(type, clock.pin);
        if (pin == CellPlan::NO_CLOCK) {
            continue;
        }
        Verific::Port &port = *type.pins()[pin];
        mark(port, roleOf(clock.edge));
        if (!clock.inverted.empty() && port.GetAtt(INVERTED_BY) == nullptr) {
            addAttribute(port, INVERTED_BY, textOf(clock.inverted).c_str());
        }
    }
}

} // namespace

void describePins(CellType &type)
{
    markClocks(type);
    const CellDescription &cell = *type.device;
    for (const CellType::Group &group : type.groups()) {
        // A pin that both enables and resets is listed as either; resetting says more.
        const char *const role = cell.set.match(group.name)      ? "set"
                                 : cell.reset.match(group.name)  ? "reset"
                                 : cell.enable.match(group.name) ? "enable"
                                 : cell.read.match(group.name)   ? "read"
                                                                 : nullptr;
        for (unsigned position = 0; role != nullptr && group.widthKnown && position < group.range.width; ++position) {
            mark(*type.pins()[group.firstPin + position], role);
        }
    }
}

} // namespace kvr::netlistdb::yosys
