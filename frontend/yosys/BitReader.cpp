#include "BitReader.h"

#include "DataBase.h"

#include <limits>
#include <string>

namespace kvr::netlistdb::yosys {

Bit readBit(json::value &value, const ReadFault &fault)
{
    const std::string_view token = value.raw_json_token();
    json::json_type type;
    check(value.type().get(type));
    if (type == json::json_type::number) {
        std::uint64_t number = 0;
        if (value.get_uint64().get(number) != simdjson::SUCCESS || number > MOST_BIT) {
            fault.fail("bit out of range: " + std::string(token.substr(0, token.find_first_of(" \t\r\n"))) +
                       " is no whole number from 0 to 2147483647");
        }
        return static_cast<Bit>(number);
    }
    if (type != json::json_type::string) {
        fault.fail("a bit must be a number or one of \"0\", \"1\", \"x\" and \"z\"");
    }
    json::raw_json_string consumed;
    check(value.get_raw_json_string().get(consumed));
    const std::size_t constant = std::string_view(CONSTANT_NAMES).find(token[1]);
    if (token[2] != '"' || constant == std::string_view::npos) {
        fault.fail("a bit must be a number or one of \"0\", \"1\", \"x\" and \"z\"");
    }
    return FIRST_CONSTANT + static_cast<Bit>(constant);
}

unsigned readDirection(json::value &value, const JsonText &text, const ReadFault &fault)
{
    const std::string_view direction = text.rawString(value, "a port direction");
    if (direction == "input") {
        return Verific::DIR_IN;
    }
    if (direction == "output") {
        return Verific::DIR_OUT;
    }
    if (direction == "inout") {
        return Verific::DIR_INOUT;
    }
    fault.fail("port direction must be \"input\", \"output\" or \"inout\", not \"" + std::string(direction) + "\"");
}

void setWidth(VectorRange &range, std::size_t width, const ReadFault &fault)
{
    constexpr std::int64_t most = std::numeric_limits<int>::max();
    if (width > static_cast<std::size_t>(most) || range.offset + static_cast<std::int64_t>(width) - 1 > most) {
        fault.fail("a vector of " + std::to_string(width) + " bits at offset " + std::to_string(range.offset) +
                   " leaves the range of 32-bit indices");
    }
    range.width = static_cast<unsigned>(width);
}

void setWidth(VectorRange &range, std::size_t width, std::string_view name, const ReadFault &fault)
{
    setWidth(range, width, fault);
    const std::string index = "[" + std::to_string(range.offset) + "]";
    if (width == 1 && range.offset != 0 && name.size() > index.size() &&
        name.substr(name.size() - index.size()) == index) {
        range.offset = 0;
    }
}

} // namespace kvr::netlistdb::yosys
