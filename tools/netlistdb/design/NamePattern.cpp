#include "design/NamePattern.h"

#include "base/Failure.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace kvr::netlistdb::tool {

namespace {

std::string fold(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
    return text;
}

const char *explain(std::regex_constants::error_type code)
{
    using namespace std::regex_constants;
    switch (code) {
    case error_collate:
    case error_ctype:
        return "unknown character class";
    case error_escape:
        return "bad escape or trailing backslash";
    case error_backref:
        return "reference to a group that does not exist";
    case error_brack:
        return "unmatched '['";
    case error_paren:
        return "unmatched parenthesis, or nothing to repeat";
    case error_brace:
        return "unmatched '{'";
    case error_badbrace:
        return "bad range in '{}'";
    case error_range:
        return "bad range in '[]'";
    case error_badrepeat:
        return "nothing to repeat before '*', '+', '?' or '{'";
    default:
        return "too complex";
    }
}

void appendLiteral(std::string &regex, char c)
{
    if (std::strchr("^$\\.*+?()[]{}|", c) != nullptr && c != '\0') {
        regex += '\\';
    }
    regex += c;
}

} // namespace

NamePattern::NamePattern(Kind kind, const std::string &text, bool ignoreCase)
    : m_text(text), m_folded(ignoreCase ? fold(text) : text), m_ignoreCase(ignoreCase)
{
    if (kind == Kind::Plain) {
        return;
    }
    auto flags = std::regex_constants::ECMAScript | std::regex_constants::optimize;
    if (ignoreCase) {
        flags |= std::regex_constants::icase;
    }
    try {
        m_expression.emplace(kind == Kind::Glob ? regexOfGlob(text) : text, flags);
    } catch (const std::regex_error &error) {
        throw wrongUsage("bad regular expression '" + text + "': " + explain(error.code()));
    }
}

bool NamePattern::matches(const std::string &fullName) const
{
    if (m_expression) {
        return std::regex_search(fullName, *m_expression, std::regex_constants::match_any);
    }
    return (m_ignoreCase ? fold(fullName) : fullName).find(m_folded) != std::string::npos;
}

std::string regexOfGlob(const std::string &glob)
{
    std::string regex = "^";
    for (std::size_t at = 0; at < glob.size(); ++at) {
        const char c = glob[at];
        const char next = at + 1 < glob.size() ? glob[at + 1] : '\0';
        if (c == '*' && next == '*') {
            regex += "[\\s\\S]*";
            ++at;
        } else if (c == '*') {
            regex += "[^/]*";
        } else if (c == '?') {
            regex += "[^/]";
        } else if (c == '\\' && next != '\0' && std::strchr("*?\\", next) != nullptr) {
            appendLiteral(regex, next);
            ++at;
        } else {
            appendLiteral(regex, c);
        }
    }
    return regex + "$";
}

} // namespace kvr::netlistdb::tool
