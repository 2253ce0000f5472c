#include "design/TclText.h"

#include <fmt/format.h>
#include <simdjson.h>

namespace kvr::netlistdb::tool {

namespace {

/// The code point that the UTF-8 in @p text begins with; moves behind it.
char32_t takeCodePoint(std::string_view &text)
{
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    char32_t point = length == 1 ? first : first & (0xFFU >> (length + 1));
    for (std::size_t at = 1; at < length; ++at) {
        point = point << 6 | (static_cast<unsigned char>(text[at]) & 0x3FU);
    }
    text.remove_prefix(length);
    return point;
}

bool isPlain(char32_t point)
{
    return (point >= 'a' && point <= 'z') || (point >= 'A' && point <= 'Z') || (point >= '0' && point <= '9') ||
           std::string_view(" _/.:,+-*=<>()'!?@%^&|~").find(static_cast<char>(point)) != std::string_view::npos;
}

} // namespace

std::string tclWord(std::string_view text)
{
    const bool isUtf8 = simdjson::validate_utf8(text.data(), text.size());
    std::string word = "\"";
    while (!text.empty()) {
        char32_t point = static_cast<unsigned char>(text.front());
        if (isUtf8) {
            point = takeCodePoint(text);
        } else {
            text.remove_prefix(1);
        }
        if (point < 0x80 && isPlain(point)) {
            word += static_cast<char>(point);
        } else if (point < 0x10000) {
            word += fmt::format("\\u{:04x}", static_cast<unsigned>(point));
        } else {
            // Older interpreters know no characters beyond 16 bits but as pairs.
            word += fmt::format("\\u{:04x}\\u{:04x}", 0xD800U + (static_cast<unsigned>(point - 0x10000) >> 10),
                                0xDC00U + (static_cast<unsigned>(point - 0x10000) & 0x3FFU));
        }
    }
    return word + '"';
}

} // namespace kvr::netlistdb::tool
