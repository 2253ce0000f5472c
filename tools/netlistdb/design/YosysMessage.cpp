#include "design/YosysMessage.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>

namespace kvr::netlistdb::tool {

namespace {

constexpr std::string_view ERROR = "ERROR: ";

/// The line of @p log that says why yosys stopped: the first error, or else the last line.
std::string_view tellingLine(std::string_view log)
{
    std::string_view telling;
    while (!log.empty()) {
        const std::size_t end = std::min(log.find('\n'), log.size());
        const std::string_view line = log.substr(0, end);
        log.remove_prefix(std::min(end + 1, log.size()));
        if (line.find(ERROR) != std::string_view::npos) {
            return line;
        }
        if (!line.empty()) {
            telling = line;
        }
    }
    return telling;
}

bool isIdentifier(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '$';
}

bool isBlank(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

/// Takes the comments out of Verilog @p text.
std::string withoutComments(std::string_view text)
{
    std::string code;
    while (!text.empty()) {
        const std::size_t slash = std::min(text.find('/'), text.size());
        code += text.substr(0, slash);
        text.remove_prefix(slash);
        if (text.substr(0, 2) == "//") {
            text.remove_prefix(std::min(text.find('\n'), text.size()));
        } else if (text.substr(0, 2) == "/*") {
            const std::size_t end = text.find("*/", 2);
            text.remove_prefix(end == std::string_view::npos ? text.size() : end + 2);
            code += ' ';
        } else if (!text.empty()) {
            code += '/';
            text.remove_prefix(1);
        }
    }
    return code;
}

/// True when @p text declares the module @p name: the keyword, blanks, the name.
bool declares(std::string_view text, std::string_view name)
{
    constexpr std::string_view KEYWORD = "module";
    for (std::size_t at = text.find(KEYWORD); at != std::string_view::npos; at = text.find(KEYWORD, at + 1)) {
        std::size_t begin = at + KEYWORD.size();
        const std::size_t blanks = begin;
        while (begin < text.size() && isBlank(text[begin])) {
            ++begin;
        }
        const std::size_t end = begin + name.size();
        if (begin > blanks && (at == 0 || !isIdentifier(text[at - 1])) && text.substr(begin, name.size()) == name &&
            (end >= text.size() || !isIdentifier(text[end]))) {
            return true;
        }
    }
    return false;
}

/// The module that @p message speaks of: what is in quotes after "in module", or behind "Module", as its source
/// calls it.
std::optional<std::string> moduleIn(std::string_view message)
{
    for (const std::string_view phrase : {"in module `", "odule `"}) {
        const std::size_t found = message.find(phrase);
        if (found == std::string_view::npos) {
            continue;
        }
        std::string_view name = message.substr(found + phrase.size());
        name = name.substr(0, name.find('\''));
        if (name.substr(0, 8) == "$paramod") {
            name.remove_prefix(name.find('\\') == std::string_view::npos ? 0 : name.find('\\'));
        }
        if (name.substr(0, 1) == "\\") {
            name.remove_prefix(1);
        }
        return std::string(name.substr(0, name.find('\\')));
    }
    return std::nullopt;
}

std::string sourceOf(const std::string &module, const std::vector<std::string> &sources)
{
    for (const std::string &source : sources) {
        std::ifstream stream(source, std::ios::binary);
        const std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
        if (declares(withoutComments(text), module)) {
            return source;
        }
    }
    return {};
}

} // namespace

YosysMessage faultIn(std::string_view log, const std::vector<std::string> &sources)
{
    const std::string_view line = tellingLine(log);
    const std::size_t mark = line.find(ERROR);
    YosysMessage message;
    if (mark == std::string_view::npos) {
        message.text = line;
        return message;
    }
    message.text = line.substr(mark + ERROR.size());
    if (mark > 2 && line.substr(mark - 2, 2) == ": ") {
        message.place = line.substr(0, mark - 2); // file:line
    } else if (const std::optional<std::string> module = moduleIn(message.text)) {
        message.place = sourceOf(*module, sources);
    }
    return message;
}

} // namespace kvr::netlistdb::tool
