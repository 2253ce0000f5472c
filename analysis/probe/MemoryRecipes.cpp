// Memories of yosys: one cell for each port, or one for all.

#include "analysis/probe/DevicePieces.h"

#include <algorithm>

namespace kvr::netlistdb::analysis::probe {

namespace {

constexpr std::uint32_t MOST_ADDRESS_BITS = 16;
constexpr std::uint64_t MOST_BITS = std::uint64_t{1} << 18; ///< of a memory that is simulated

bool isTooLarge(std::uint64_t addressBits, std::uint64_t width)
{
    return addressBits > MOST_ADDRESS_BITS || width == 0 || (width << addressBits) > MOST_BITS;
}

bool falls(std::string_view polarity, std::uint32_t port)
{
    return !polarity.empty() && !bitOf(polarity, port);
}

Slots partOf(const Slots &all, std::uint32_t port, std::uint32_t ports)
{
    const std::size_t width = ports > 0 ? all.size() / ports : 0;
    const auto first = all.begin() + static_cast<std::ptrdiff_t>(width * port);
    return {first, first + static_cast<std::ptrdiff_t>(width)};
}

struct ReadPort {
    bool clocked;
    bool falling;
    Slot clock;
    Slot enable;
    bool writeFirst;
    Slots address;
    Slots data;
};

void addRead(RecipeBuilder &cell, std::uint16_t memory, const ReadPort &port)
{
    Part &part = addReadPort(cell, port.clocked ? Op::ClockedRead : Op::MemoryRead, memory,
                             {port.clock, port.enable, SLOT_ZERO}, port.address, port.data);
    part.flags =
        static_cast<std::uint16_t>((port.falling ? PART_FALLING : 0) | (port.writeFirst ? PART_WRITE_FIRST : 0));
}

bool isZero(std::string_view value)
{
    return value.find_first_not_of('0') == std::string_view::npos;
}

/// `$memrd`, `$memwr`, `$meminit`: they share the memory that they name.
bool memoryPort(RecipeBuilder &cell)
{
    const std::string_view type = cell.type();
    const Slots address = cell.port("ADDR");
    const Slots data = cell.port("DATA");
    const std::uint32_t width = cell.number("WIDTH");
    MemoryShape shape;
    shape.name = std::string(cell.parameter("MEMID"));
    shape.width = width;
    // The address of contents at the start is as wide as an integer, whatever the memory is.
    const bool isStart = startsWith(type, "$meminit");
    shape.addressBits = isStart ? 0 : static_cast<std::uint32_t>(address.size());
    const std::uint32_t words = isStart ? std::max(1U, cell.number("WORDS")) : 1;
    if (isTooLarge(shape.addressBits, width) || data.size() != std::size_t{width} * words || shape.name.empty()) {
        return false;
    }
    cell.recipe().memories.push_back(shape);
    const bool clocked = cell.flag("CLK_ENABLE");
    const bool falling = falls(cell.parameter("CLK_POLARITY"), 0);
    const Slot clock = cell.pin("CLK", SLOT_UNKNOWN);
    if (startsWith(type, "$memrd")) {
        if (clocked && (cell.pin("ARST", SLOT_ZERO) != SLOT_ZERO || cell.pin("SRST", SLOT_ZERO) != SLOT_ZERO) &&
            !(isZero(cell.parameter("ARST_VALUE")) || isZero(cell.parameter("SRST_VALUE")))) {
            return false;
        }
        addRead(cell, 0,
                {clocked, falling, clock, clocked ? cell.pin("EN", SLOT_ONE) : SLOT_ONE,
                 isNonZero(cell.parameter("TRANSPARENCY_MASK")) || cell.flag("TRANSPARENT"), address, data});
        return true;
    }
    if (startsWith(type, "$memwr")) {
        addWritePort(cell, 0, clock, falling, address, data, cell.port("EN"));
        return clocked && cell.port("EN").size() == data.size();
    }
    Part &part = cell.add(Op::MemoryStart, {address, data});
    part.width = static_cast<std::uint32_t>(data.size());
    part.inputs = static_cast<std::uint32_t>(address.size());
    return true;
}

bool wholeMemory(RecipeBuilder &cell)
{
    const std::uint32_t width = cell.number("WIDTH");
    const std::uint32_t addressBits = cell.number("ABITS");
    const std::uint32_t reads = cell.number("RD_PORTS");
    const std::uint32_t writes = cell.number("WR_PORTS");
    const Slots readData = cell.port("RD_DATA");
    const Slots readAddress = cell.port("RD_ADDR");
    const Slots writeData = cell.port("WR_DATA");
    if (isTooLarge(addressBits, width) || readData.size() != std::size_t{reads} * width ||
        readAddress.size() != std::size_t{reads} * addressBits || writeData.size() != std::size_t{writes} * width) {
        return false;
    }
    MemoryShape shape;
    shape.width = width;
    shape.addressBits = addressBits;
    const std::string_view start = cell.parameter("INIT");
    if (start.size() > 1) {
        shape.start.assign(start.rbegin(), start.rend());
    }
    cell.recipe().memories.push_back(shape);
    const Slots readClock = cell.port("RD_CLK"), readEnable = cell.port("RD_EN");
    for (std::uint32_t port = 0; port < reads; ++port) {
        const bool clocked = bitOf(cell.parameter("RD_CLK_ENABLE"), port);
        addRead(cell, 0,
                {clocked, falls(cell.parameter("RD_CLK_POLARITY"), port),
                 clocked && port < readClock.size() ? readClock[port] : SLOT_UNKNOWN,
                 clocked && port < readEnable.size() ? readEnable[port] : SLOT_ONE,
                 isNonZero(cell.parameter("RD_TRANSPARENCY_MASK")), partOf(readAddress, port, reads),
                 partOf(readData, port, reads)});
    }
    const Slots writeClock = cell.port("WR_CLK");
    for (std::uint32_t port = 0; port < writes; ++port) {
        if (!bitOf(cell.parameter("WR_CLK_ENABLE"), port) || port >= writeClock.size()) {
            return false;
        }
        addWritePort(cell, 0, writeClock[port], falls(cell.parameter("WR_CLK_POLARITY"), port),
                     partOf(cell.port("WR_ADDR"), port, writes), partOf(writeData, port, writes),
                     partOf(cell.port("WR_EN"), port, writes));
    }
    return true;
}

} // namespace

bool addWordMemory(RecipeBuilder &cell)
{
    static constexpr std::string_view ports[] = {"$memrd",    "$memrd_v2", "$memwr",
                                                 "$memwr_v2", "$meminit",  "$meminit_v2"};
    cell.recipe().kind = CellKind::Memory;
    if (std::find(std::begin(ports), std::end(ports), cell.type()) != std::end(ports)) {
        return memoryPort(cell);
    }
    return (cell.type() == "$mem" || cell.type() == "$mem_v2") && wholeMemory(cell);
}

} // namespace kvr::netlistdb::analysis::probe
