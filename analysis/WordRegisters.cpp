// Flip-flops, latches and memories of yosys.

#include "analysis/WordCells.h"

#include <algorithm>
#include <array>

namespace kvr::netlistdb::analysis {

namespace {

std::uint8_t edgeOf(bool rises)
{
    return rises ? EDGE_RISE : EDGE_FALL;
}

/// A parameter that is left out says a rising edge.
bool risesAt(const ModelBuilder &cell, const char *parameter, std::uint64_t port = 0)
{
    const std::string_view polarity = cell.parameter(parameter);
    return polarity.empty() || bitOf(polarity, port);
}

void markRoles(ModelBuilder &cell)
{
    for (const char *name : {"EN", "E"}) {
        cell.setRole(cell.port(name), PinRole::Enable);
    }
    for (const char *name : {"ARST", "SET", "CLR", "ALOAD", "AD", "R", "S", "L"}) {
        cell.setRole(cell.port(name), PinRole::AsyncSetReset);
    }
    cell.setRole(cell.port("SRST"), PinRole::SyncSetReset);
}

/// One clock, Q from D; what loads asynchronously passes through while it does.
void flipFlop(ModelBuilder &cell, const char *clockName, bool rises, std::string_view load)
{
    cell.setKind(CellKind::FlipFlop);
    markRoles(cell);
    if (cell.port(clockName).empty()) {
        return;
    }
    const std::uint32_t clock = cell.addClock(cell.port(clockName).front(), edgeOf(rises));
    cell.launch(cell.outputs(), clock);
    cell.capture(cell.inputs(), clock);
    const PinList &loaded = cell.port("AD");
    const PinList &outputs = cell.port("Q");
    if (load.empty() || loaded.empty()) {
        return;
    }
    cell.setLoadsAsynchronously();
    for (std::size_t at = 0; at < outputs.size(); ++at) {
        PinList inputs = cell.port(load);
        if (at < loaded.size()) {
            inputs.push_back(loaded[at]);
        }
        cell.reach({outputs[at]}, inputs);
    }
}

/// Every bit of Q follows the bits of the vectors @p bits at its place, and all of @p common.
void latch(ModelBuilder &cell, std::initializer_list<const char *> bits, std::initializer_list<const char *> common)
{
    cell.setKind(CellKind::Latch);
    markRoles(cell);
    const PinList &outputs = cell.port("Q");
    for (std::size_t at = 0; at < outputs.size(); ++at) {
        PinList inputs;
        for (const char *name : bits) {
            const PinList &operand = cell.port(name);
            if (at < operand.size()) {
                inputs.push_back(operand[at]);
            }
        }
        for (const char *name : common) {
            const PinList &operand = cell.port(name);
            inputs.insert(inputs.end(), operand.begin(), operand.end());
        }
        cell.reach({outputs[at]}, inputs);
    }
}

/// Bits @p port × width … of a vector that has the same number of bits for each of @p ports ports.
PinList part(const PinList &vector, std::uint64_t port, std::uint64_t ports)
{
    const std::size_t width = ports > 0 ? vector.size() / static_cast<std::size_t>(ports) : 0;
    const auto first = static_cast<std::size_t>(port) * width;
    return first + width <= vector.size() ? PinList(vector.begin() + static_cast<std::ptrdiff_t>(first),
                                                    vector.begin() + static_cast<std::ptrdiff_t>(first + width))
                                          : PinList();
}

/// A whole memory. The contents that a read port without a clock shows change with the clocks that write, and with the
/// inputs of write ports that have none.
void wholeMemory(ModelBuilder &cell)
{
    cell.setKind(CellKind::Memory);
    for (const char *name : {"RD_EN", "WR_EN"}) {
        cell.setRole(cell.port(name), PinRole::Enable);
    }
    for (const char *name : {"RD_ADDR", "WR_ADDR"}) {
        cell.setRole(cell.port(name), PinRole::Address);
    }
    cell.setRole(cell.port("RD_ARST"), PinRole::AsyncSetReset);
    cell.setRole(cell.port("RD_SRST"), PinRole::SyncSetReset);
    const std::uint64_t reads = std::min<std::uint64_t>(numberOf(cell.parameter("RD_PORTS")), 0xFFFF);
    const std::uint64_t writes = std::min<std::uint64_t>(numberOf(cell.parameter("WR_PORTS")), 0xFFFF);
    PinList writeClocks;
    PinList transparent;
    for (std::uint64_t port = 0; port < writes; ++port) {
        const PinList clock = part(cell.port("WR_CLK"), port, writes);
        if (bitOf(cell.parameter("WR_CLK_ENABLE"), port) && !clock.empty()) {
            writeClocks.push_back(cell.addClock(clock.front(), edgeOf(risesAt(cell, "WR_CLK_POLARITY", port))));
        }
        for (const char *name : {"WR_EN", "WR_ADDR", "WR_DATA"}) {
            const PinList bits = part(cell.port(name), port, writes);
            if (bitOf(cell.parameter("WR_CLK_ENABLE"), port) && !clock.empty()) {
                cell.capture(bits, writeClocks.back());
            } else {
                transparent.insert(transparent.end(), bits.begin(), bits.end());
            }
        }
    }
    for (std::uint64_t port = 0; port < reads; ++port) {
        const PinList data = part(cell.port("RD_DATA"), port, reads);
        const PinList clock = part(cell.port("RD_CLK"), port, reads);
        if (bitOf(cell.parameter("RD_CLK_ENABLE"), port) && !clock.empty()) {
            const std::uint32_t read = cell.addClock(clock.front(), edgeOf(risesAt(cell, "RD_CLK_POLARITY", port)));
            cell.launch(data, read);
            for (const char *name : {"RD_EN", "RD_ADDR", "RD_ARST", "RD_SRST"}) {
                cell.capture(part(cell.port(name), port, reads), read);
            }
            continue;
        }
        for (const std::uint32_t write : writeClocks) {
            cell.launch(data, write);
        }
        PinList inputs = part(cell.port("RD_ADDR"), port, reads);
        const PinList enable = part(cell.port("RD_EN"), port, reads);
        inputs.insert(inputs.end(), enable.begin(), enable.end());
        inputs.insert(inputs.end(), transparent.begin(), transparent.end());
        cell.reach(data, inputs);
    }
}

/// One port of a memory, as a cell of its own.
void memoryPort(ModelBuilder &cell)
{
    cell.setKind(CellKind::Memory);
    markRoles(cell);
    cell.setRole(cell.port("ADDR"), PinRole::Address);
    if (isNonZero(cell.parameter("CLK_ENABLE")) && !cell.port("CLK").empty()) {
        const std::uint32_t clock = cell.addClock(cell.port("CLK").front(), edgeOf(risesAt(cell, "CLK_POLARITY")));
        cell.launch(cell.outputs(), clock);
        cell.capture(cell.inputs(), clock);
    } else {
        PinList inputs = cell.port("ADDR");
        inputs.insert(inputs.end(), cell.port("EN").begin(), cell.port("EN").end());
        cell.reach(cell.outputs(), inputs);
    }
}

/// `$_<kind>_<polarities>_`; the first polarity is that of the clock.
bool gate(ModelBuilder &cell)
{
    const std::string_view type = cell.type();
    const std::size_t end = type.find('_', 2);
    if (end == std::string_view::npos) {
        return false;
    }
    const std::string_view kind = type.substr(2, end - 2);
    if (isOneOf(kind, {"DFF", "DFFE", "SDFF", "SDFFE", "SDFFCE", "ALDFF", "ALDFFE", "DFFSR", "DFFSRE"})) {
        flipFlop(cell, "C", type.substr(end + 1, 1) != "N", startsWith(kind, "ALDFF") ? "L" : "");
        if (startsWith(kind, "SDFF")) {
            cell.setRole(cell.port("R"), PinRole::SyncSetReset);
        }
        return true;
    }
    if (isOneOf(kind, {"DLATCH", "DLATCHSR", "SR"})) {
        latch(cell, {}, {"D", "E", "R", "S"});
        return true;
    }
    return false;
}

} // namespace

bool buildWordRegister(ModelBuilder &cell)
{
    const std::string_view type = cell.type();
    if (startsWith(type, "$_")) {
        return gate(cell);
    }
    if (isOneOf(type, {"$dff", "$dffe", "$dffsr", "$dffsre", "$adff", "$adffe", "$aldff", "$aldffe", "$sdff", "$sdffe",
                       "$sdffce"})) {
        flipFlop(cell, "CLK", risesAt(cell, "CLK_POLARITY"), startsWith(type, "$aldff") ? "ALOAD" : "");
    } else if (type == "$fsm") {
        flipFlop(cell, "CLK", risesAt(cell, "CLK_POLARITY"), "");
        cell.reach(cell.outputs(), cell.port("CTRL_IN"));
    } else if (type == "$dlatch") {
        latch(cell, {"D"}, {"EN"});
    } else if (type == "$adlatch") {
        latch(cell, {"D"}, {"EN", "ARST"});
    } else if (type == "$dlatchsr") {
        latch(cell, {"D", "SET", "CLR"}, {"EN"});
    } else if (type == "$sr") {
        latch(cell, {"SET", "CLR"}, {});
    } else if (type == "$mem" || type == "$mem_v2") {
        wholeMemory(cell);
    } else if (isOneOf(type, {"$memrd", "$memrd_v2", "$memwr", "$memwr_v2"})) {
        memoryPort(cell);
    } else {
        return false;
    }
    return true;
}

const std::vector<std::string> &wordParameters()
{
    static const std::vector<std::string> names = {"A_SIGNED",   "B_SIGNED",      "OFFSET",          "CLK_POLARITY",
                                                   "CLK_ENABLE", "RD_CLK_ENABLE", "RD_CLK_POLARITY", "RD_PORTS",
                                                   "WR_PORTS",   "WR_CLK_ENABLE", "WR_CLK_POLARITY"};
    return names;
}

} // namespace kvr::netlistdb::analysis
