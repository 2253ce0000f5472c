#include "UserModuleName.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace kvr::netlistdb::yosys {

namespace {

constexpr std::string_view DERIVED = "$paramod";
/// Bits behind which a value is too long for a number that people read.
constexpr std::size_t MOST_BITS = 64;
/// A message names at most this many modules.
constexpr std::size_t MOST_LISTED = 10;

bool isBits(std::string_view text)
{
    return !text.empty() && text.find_first_not_of("01xz") == std::string_view::npos;
}

/// A vector of bits as a person would write it. @p isSigned reads the first bit as a sign.
std::string number(std::string_view bits, bool isSigned)
{
    if (bits.find_first_not_of("01") != std::string_view::npos || bits.size() > MOST_BITS) {
        return std::to_string(bits.size()) + "'b" + std::string(bits);
    }
    std::uint64_t value = 0;
    std::from_chars(bits.data(), bits.data() + bits.size(), value, 2);
    if (bits.front() == '0' || bits.size() < 32) {
        return std::to_string(value);
    }
    // Integers have 32 bits and a sign; what is that wide and known to have none is likely a mask.
    if (isSigned) {
        const std::uint64_t magnitude =
            bits.size() == MOST_BITS ? ~value + 1 : (std::uint64_t{1} << bits.size()) - value;
        return "-" + std::to_string(magnitude);
    }
    char digits[20];
    const char *end = std::to_chars(digits, digits + sizeof digits, value, 16).ptr;
    return "0x" + std::string(digits, static_cast<std::size_t>(end - digits));
}

std::string quoted(std::string_view text)
{
    return "\"" + std::string(text) + "\"";
}

/// Characters of 8 bits each.
std::string textOf(std::string_view bits)
{
    std::string text;
    for (std::size_t at = bits.size() % 8; at + 8 <= bits.size(); at += 8) {
        unsigned value = 0;
        std::from_chars(bits.data() + at, bits.data() + at + 8, value, 2);
        text += static_cast<char>(value);
    }
    return quoted(text);
}

/// `s32'0101…`, `t40'…` for texts, `12'…` for vectors without sign; anything else as is.
std::string valueOf(std::string_view text)
{
    const std::size_t tick = text.find('\'');
    if (tick == std::string_view::npos || !isBits(text.substr(tick + 1))) {
        return std::string(text);
    }
    const std::string_view bits = text.substr(tick + 1);
    return text.front() == 't' ? textOf(bits) : number(bits, text.front() == 's');
}

void add(std::string &list, std::string_view name, const std::string &value)
{
    list += list.empty() ? "" : ",";
    list.append(name).append("=").append(value);
}

UserModuleName named(std::string_view module, const std::string &list)
{
    UserModuleName result;
    result.module = module;
    result.text = result.module + (list.empty() ? "" : "(" + list + ")");
    return result;
}

} // namespace

UserModuleName userModuleName(std::string_view name, const std::vector<std::pair<std::string, std::string>> &parameters)
{
    if (name.substr(0, DERIVED.size()) != DERIVED) {
        return {};
    }
    std::string_view rest = name.substr(DERIVED.size());
    const bool tellsParameters = rest.substr(0, 1) == "\\";
    const std::size_t slash = rest.find('\\');
    if (slash == std::string_view::npos || slash + 1 == rest.size()) {
        return {};
    }
    rest.remove_prefix(slash + 1);
    std::string list;
    if (!tellsParameters) {
        for (const auto &[parameter, value] : parameters) {
            add(list, parameter, isBits(value) ? number(value, false) : quoted(value));
        }
        return named(rest, list);
    }
    const std::size_t end = std::min(rest.find('\\'), rest.size());
    const std::string_view module = rest.substr(0, end);
    rest.remove_prefix(end);
    while (!rest.empty()) {
        rest.remove_prefix(1);
        const std::string_view parameter = rest.substr(0, rest.find('\\'));
        const std::size_t equals = parameter.find('=');
        if (equals != std::string_view::npos) {
            add(list, parameter.substr(0, equals), valueOf(parameter.substr(equals + 1)));
        }
        rest.remove_prefix(parameter.size());
    }
    return named(module, list);
}

bool isMadeFrom(std::string_view userName, std::string_view module)
{
    return userName.size() > module.size() && userName[module.size()] == '(' &&
           userName.substr(0, module.size()) == module;
}

std::string quotedList(const std::vector<std::string> &names)
{
    std::string list;
    for (std::size_t at = 0; at < names.size() && at < MOST_LISTED; ++at) {
        list.append(at == 0 ? "'" : ", '").append(names[at]).append("'");
    }
    if (names.size() > MOST_LISTED) {
        list += " and " + std::to_string(names.size() - MOST_LISTED) + " more";
    }
    return list;
}

std::string severalMadeFrom(const std::string &wanted, const std::vector<std::string> &names)
{
    return "several modules were made from '" + wanted + "', which was asked for as the top: " + quotedList(names);
}

} // namespace kvr::netlistdb::yosys
