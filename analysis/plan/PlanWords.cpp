#include "analysis/plan/PlanWords.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace kvr::netlistdb::analysis::plan {

namespace {

constexpr const char *DIGITS = "0123456789abcdef";

bool isControl(char c)
{
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

/// The character that an escape in @p line stands for; @p at is behind the backslash and moves behind the escape.
char takeEscape(std::string_view line, std::size_t &at)
{
    const char kind = at < line.size() ? line[at] : '\0';
    ++at;
    switch (kind) {
    case '"':
    case '\\':
        return kind;
    case 'n':
        return '\n';
    case 't':
        return '\t';
    case 'x': {
        unsigned value = 0;
        const std::string_view digits = line.substr(std::min(at, line.size()), 2);
        const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
        if (error != std::errc() || digits.size() != 2 || stop != digits.data() + 2) {
            throw std::invalid_argument("\\x wants two hexadecimal digits");
        }
        at += 2;
        return static_cast<char>(value);
    }
    default:
        throw std::invalid_argument("a backslash in quotes stands before none of \" \\ n t x");
    }
}

Word takeQuoted(std::string_view line, std::size_t &at)
{
    Word word{{}, true};
    for (++at; at < line.size() && line[at] != '"';) {
        const char c = line[at++];
        word.text += c == '\\' ? takeEscape(line, at) : c;
    }
    if (at >= line.size()) {
        throw std::invalid_argument("a quotation mark is missing");
    }
    ++at;
    if (at < line.size() && !isBlank(line[at])) {
        throw std::invalid_argument("a blank is missing behind a quotation mark");
    }
    return word;
}

Word takeBare(std::string_view line, std::size_t &at)
{
    Word word{{}, false};
    for (; at < line.size() && !isBlank(line[at]); ++at) {
        if (line[at] == '"' || line[at] == '\\' || line[at] == '#') {
            throw std::invalid_argument(std::string("a word with ") + line[at] + " in it wants quotes");
        }
        word.text += line[at];
    }
    return word;
}

} // namespace

Line takeApart(std::string_view line)
{
    Line result;
    for (std::size_t at = 0; at < line.size();) {
        if (isBlank(line[at])) {
            ++at;
        } else if (line[at] == '#') {
            result.comment = line.substr(at);
            break;
        } else {
            result.words.push_back(line[at] == '"' ? takeQuoted(line, at) : takeBare(line, at));
        }
    }
    return result;
}

std::string quoted(std::string_view text)
{
    bool isBare = !text.empty() && text != "-";
    for (const char c : text) {
        isBare = isBare && !isControl(c) && c != ' ' && c != '"' && c != '#' && c != '\\';
    }
    if (isBare) {
        return std::string(text);
    }
    std::string word = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            word += '\\';
            word += c;
        } else if (c == '\n') {
            word += "\\n";
        } else if (c == '\t') {
            word += "\\t";
        } else if (isControl(c)) {
            word += "\\x";
            word += DIGITS[static_cast<unsigned char>(c) >> 4];
            word += DIGITS[static_cast<unsigned char>(c) & 15];
        } else {
            word += c;
        }
    }
    return word + '"';
}

} // namespace kvr::netlistdb::analysis::plan
