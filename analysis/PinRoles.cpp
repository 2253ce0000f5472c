#include "analysis/PinRoles.h"

#include <DataBase.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>

namespace kvr::netlistdb::analysis {

namespace {

constexpr const char *ROLE = "NETLISTDB_PIN_ROLE";
constexpr const char *INVERTED_BY = "NETLISTDB_PIN_INVERTED_BY";

const Verific::Port &portOf(const ModelBuilder &cell, std::uint32_t pin)
{
    return *cell.portAt(pin);
}

std::string_view roleTextOf(const ModelBuilder &cell, std::uint32_t pin)
{
    const char *const text = portOf(cell, pin).GetAttValue(ROLE);
    return text != nullptr ? std::string_view(text) : std::string_view();
}

PinRole roleByName(std::string_view name)
{
    static constexpr std::string_view ENABLES[] = {"E", "EN", "CE", "CEN", "ENA", "CLKEN", "OCE", "WE", "WEN", "WRE"};
    static constexpr std::string_view RESETS[] = {"R",    "RST",  "RSTN",  "RESET",  "CLR",  "CLRN",
                                                  "ACLR", "ARST", "ARSTN", "SRST",   "SCLR", "S",
                                                  "SET",  "PRE",  "PRN",   "PRESET", "SR",   "LSR"};
    const std::string upper = upperCase(name);
    const auto isOneOf = [&](const auto &all) {
        return std::find(std::begin(all), std::end(all), upper) != std::end(all);
    };
    if (isOneOf(ENABLES) || endsWith(upper, "_EN") || startsWith(upper, "EN_") || startsWith(upper, "WE_")) {
        return PinRole::Enable;
    }
    if (isOneOf(RESETS)) {
        return PinRole::SetReset;
    }
    return upper.find("ADDR") != std::string::npos ? PinRole::Address : PinRole::Data;
}

PinRole roleByText(std::string_view text)
{
    if (text == "enable") {
        return PinRole::Enable;
    }
    if (text == "set" || text == "reset") {
        return PinRole::SetReset;
    }
    return text == "read" ? PinRole::Address : PinRole::Data;
}

/// Whether `NAME=VALUE|VALUE …` holds for the parameters of the cell: every name has one of its values.
bool holds(const ModelBuilder &cell, std::string_view condition)
{
    while (!condition.empty()) {
        const std::string_view term = condition.substr(0, condition.find(' '));
        condition.remove_prefix(std::min(term.size() + 1, condition.size()));
        const std::size_t equals = term.find('=');
        if (equals == std::string_view::npos) {
            return false;
        }
        const std::string_view value = cell.parameter(std::string(term.substr(0, equals)).c_str());
        std::string_view wanted = term.substr(equals + 1);
        bool found = false;
        while (!wanted.empty() && !found) {
            const std::string_view each = wanted.substr(0, wanted.find('|'));
            wanted.remove_prefix(std::min(each.size() + 1, wanted.size()));
            found = each == value || (isNonZero(value) && isNonZero(each) && numberOf(each) == numberOf(value));
        }
        if (!found) {
            return false;
        }
    }
    return true;
}

/// What is left of the name of a clock pin before and behind the word for clock: the letters of its side.
void sideOf(std::string_view clock, std::string &before, std::string &behind)
{
    const std::string upper = upperCase(clock);
    for (const char *word : {"CLOCK", "CLK", "CK"}) {
        const std::size_t at = upper.find(word);
        if (at != std::string::npos) {
            before = upper.substr(0, at);
            behind = upper.substr(at + std::strlen(word));
            return;
        }
    }
    before.clear();
    behind.clear();
}

} // namespace

bool isMarkedAsClock(const ModelBuilder &cell, std::uint32_t pin)
{
    const char *const value = portOf(cell, pin).GetAttValue("KVR_ATTRIBUTE_PORT__IS_CLOCK");
    return cell.isInput(pin) && value != nullptr && std::strcmp(value, "TRUE") == 0;
}

bool isDescribedAsClock(const ModelBuilder &cell, std::uint32_t pin)
{
    return startsWith(roleTextOf(cell, pin), "clock");
}

bool isDescribedAsRead(const ModelBuilder &cell, std::uint32_t pin)
{
    return roleTextOf(cell, pin) == "read";
}

std::uint8_t edgesOf(const ModelBuilder &cell, std::uint32_t pin)
{
    const std::string_view role = roleTextOf(cell, pin);
    if (role == "clock-both") {
        return EDGE_RISE | EDGE_FALL;
    }
    bool rises = role != "clock-fall";
    const char *const inverted = portOf(cell, pin).GetAttValue(INVERTED_BY);
    if (inverted != nullptr ? holds(cell, inverted) : isNonZero(cell.parameter("C_INVERTED"))) {
        rises = !rises;
    }
    return rises ? EDGE_RISE : EDGE_FALL;
}

void markControlPins(ModelBuilder &cell)
{
    for (const std::uint32_t pin : cell.inputs()) {
        const std::string_view text = roleTextOf(cell, pin);
        cell.setRole(pin, text.empty() ? roleByName(cell.nameOf(pin)) : roleByText(text));
    }
}

std::vector<std::string> invertingParameters(const Verific::Netlist &view)
{
    std::vector<std::string> names;
    Verific::MapIter ports;
    const Verific::Port *port = nullptr;
    FOREACH_PORT_OF_NETLIST (&view, ports, port) {
        const char *const text = port->GetAttValue(INVERTED_BY);
        std::string_view condition = text != nullptr ? std::string_view(text) : std::string_view();
        while (!condition.empty()) {
            const std::string_view term = condition.substr(0, condition.find(' '));
            condition.remove_prefix(std::min(term.size() + 1, condition.size()));
            const std::string_view name = term.substr(0, term.find('='));
            if (std::find(names.begin(), names.end(), name) == names.end()) {
                names.emplace_back(name);
            }
        }
    }
    return names;
}

bool isOnSideOf(std::string_view pin, std::string_view clock)
{
    std::string before;
    std::string behind;
    sideOf(clock, before, behind);
    const std::string upper = upperCase(pin);
    return (!before.empty() && startsWith(upper, before)) || (!behind.empty() && endsWith(upper, behind));
}

} // namespace kvr::netlistdb::analysis
